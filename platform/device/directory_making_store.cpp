#include "platform/device/directory_making_store.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "platform/diagnostics/failure.h"
#include "platform/io/stream_to_sink.h"
#include "platform/text/device_paths.h"

namespace platform {

namespace {

// Directories that were made, and go with the object unless they are kept.
class NewDirectories {
  public:
    explicit NewDirectories(DeviceStore& store) : store_(store) {}
    ~NewDirectories() {
        std::for_each(made_.rbegin(), made_.rend(), [this](const std::u16string& directory) {
            store_.RemoveDirectoryW(directory.c_str());
        });
    }
    NewDirectories(const NewDirectories&) = delete;
    NewDirectories& operator=(const NewDirectories&) = delete;

    // Makes those that are missing on the way to `path`. False, with the reason as the store's last
    // failure, if one cannot be made.
    bool MakeTo(std::u16string_view path);
    void Keep() { made_.clear(); }

  private:
    DeviceStore& store_;
    std::vector<std::u16string> made_;
};

bool NewDirectories::MakeTo(std::u16string_view path) {
    for (std::size_t end = path.find(u'\\', 1); end != std::u16string_view::npos;
         end = path.find(u'\\', end + 1)) {
        const std::u16string directory(path.substr(0, end));
        if (store_.CreateDirectoryW(directory.c_str(), nullptr) != 0) {
            made_.push_back(directory);
        } else if (ErrorCodeOf(store_.LastFailure()) != ERROR_ALREADY_EXISTS) {
            return false;
        }
    }
    return true;
}

}  // namespace

std::FILE* DirectoryMakingStore::_wfopen(const WCHAR* path, const WCHAR* mode) {
    std::FILE* file = ForwardingStore::_wfopen(path, mode);
    const bool isWritten = std::u16string_view(mode) == u"wb";
    if (file != nullptr || !isWritten || !IsNotThere(LastFailure())) {
        return file;
    }
    const auto directories = std::make_shared<NewDirectories>(*this);
    file =
        directories->MakeTo(CanonicalPath(path)) ? ForwardingStore::_wfopen(path, mode) : nullptr;
    if (file == nullptr) {
        return nullptr;
    }
    const auto write = [this, file, directories](const std::string& content) {
        std::fwrite(content.data(), 1, content.size(), file);
        if (std::fclose(file) != 0) {
            return Status(tl::unexpected<Failure>(LastFailure()));
        }
        directories->Keep();
        return Status();
    };
    return OpenStreamInMemory(write, failure_).value_or(nullptr);
}

}  // namespace platform
