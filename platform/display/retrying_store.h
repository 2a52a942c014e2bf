#pragma once

#include <functional>
#include <string>

#include "platform/seam/forwarding_store.h"

namespace platform {

// A store that asks whether to try again before it gives up what could not be written to a file of
// the device.
class RetryingStore : public ForwardingStore {
  public:
    // Whether to try again after this failure, in words.
    using TryAgain = std::function<bool(const std::string& failure)>;

    // `inner` stays the caller's.
    RetryingStore(DeviceStore& inner, TryAgain tryAgain)
        : ForwardingStore(inner), tryAgain_(std::move(tryAgain)) {}

    // What is written to a file goes there when it is closed.
    std::FILE* _wfopen(const WCHAR* path, const WCHAR* mode) override;

  private:
    // Writes a file whole, which is open, and closes it. Fails when it could not be written, and is
    // not to be tried again.
    Status Write(std::FILE* file, const std::u16string& path, const std::string& content);
    std::FILE* OpenForWriting(const std::u16string& path);
    bool WantsToTryAgain(const std::u16string& path);

    TryAgain tryAgain_;
    Failure failure_;  // of the file that was closed last
};

}  // namespace platform
