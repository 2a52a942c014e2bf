#include "platform/display/retrying_store.h"

#include "platform/io/stream_to_sink.h"
#include "platform/text/readable_text.h"

namespace platform {

namespace {

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
    return OpenStreamInMemory(
               [this, file, path = std::u16string(path)](const std::string& content) {
                   return Write(file, path, content);
               },
               failure_)
        .value_or(nullptr);
}

Status RetryingStore::Write(std::FILE* file, const std::u16string& path,
                            const std::string& content) {
    while (!WriteAndClose(file, content)) {
        file = WantsToTryAgain(path) ? OpenForWriting(path) : nullptr;
        if (file == nullptr) {
            return tl::unexpected<Failure>(LastFailure());
        }
    }
    return {};
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
