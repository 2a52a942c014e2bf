#include "platform/display/retrying_store.h"

#include <memory>

#include "platform/diagnostics/failure.h"
#include "platform/text/readable_text.h"

namespace platform {

namespace {

struct KeptFile {
    RetryingStore& store;
    std::u16string path;
    std::FILE* file;  // that was opened first
    std::string content;
};

ssize_t Keep(void* cookie, const char* bytes, std::size_t count) {
    static_cast<KeptFile*>(cookie)->content.append(bytes, count);
    return static_cast<ssize_t>(count);
}

int WriteKept(void* cookie) {
    const std::unique_ptr<KeptFile> kept(static_cast<KeptFile*>(cookie));
    return kept->store.Write(kept->file, kept->path, kept->content) ? 0 : -1;
}

// A failure of the writing shows when the file is closed.
bool WriteAndClose(std::FILE* file, const std::string& content) {
    std::fwrite(content.data(), 1, content.size(), file);
    return std::fclose(file) == 0;
}

}  // namespace

std::FILE* RetryingStore::_wfopen(const WCHAR* path, const WCHAR* mode) {
    const bool isWritten = std::u16string_view(mode) == u"wb";
    std::FILE* const file = isWritten ? OpenForWriting(path) : ForwardingStore::_wfopen(path, mode);
    if (!isWritten || file == nullptr) {
        return file;
    }
    auto kept = std::unique_ptr<KeptFile>(new KeptFile{*this, path, file, {}});
    std::FILE* const opened = fopencookie(
        kept.get(), "w", {.read = nullptr, .write = Keep, .seek = nullptr, .close = WriteKept});
    if (opened != nullptr) {
        static_cast<void>(kept.release());
    }
    return opened;
}

bool RetryingStore::Write(std::FILE* file, const std::u16string& path, const std::string& content) {
    while (!WriteAndClose(file, content)) {
        file = WantsToTryAgain(path) ? OpenForWriting(path) : nullptr;
        if (file == nullptr) {
            return false;
        }
    }
    return true;
}

// Null when it could not be opened, and is not to be tried again.
std::FILE* RetryingStore::OpenForWriting(const std::u16string& path) {
    std::FILE* file = ForwardingStore::_wfopen(path.c_str(), u"wb");
    while (file == nullptr && WantsToTryAgain(path)) {
        file = ForwardingStore::_wfopen(path.c_str(), u"wb");
    }
    return file;
}

bool RetryingStore::WantsToTryAgain(const std::u16string& path) {
    return tryAgain_(ReadableText(path) + " cannot be written: " + ReasonOf(LastFailure()));
}

}  // namespace platform
