#include "platform/display/responsive_store.h"

namespace platform {

namespace {

constexpr std::chrono::milliseconds kPatience{100};

}  // namespace

HANDLE AnsweringStore::FindFirstFileW(const WCHAR* pattern, WIN32_FIND_DATA* data) {
    AnswerNowAndThen();
    return ForwardingStore::FindFirstFileW(pattern, data);
}

BOOL AnsweringStore::FindNextFileW(HANDLE find, WIN32_FIND_DATA* data) {
    AnswerNowAndThen();
    return ForwardingStore::FindNextFileW(find, data);
}

BOOL AnsweringStore::DeleteFileW(const WCHAR* path) {
    AnswerNowAndThen();
    return ForwardingStore::DeleteFileW(path);
}

BOOL AnsweringStore::MoveFileW(const WCHAR* oldPath, const WCHAR* newPath) {
    AnswerNowAndThen();
    return ForwardingStore::MoveFileW(oldPath, newPath);
}

void AnsweringStore::AnswerNowAndThen() {
    const auto now = std::chrono::steady_clock::now();
    if (now - answered_ >= kPatience) {
        windows_.AnswerDesktop();
        answered_ = std::chrono::steady_clock::now();
    }
}

}  // namespace platform
