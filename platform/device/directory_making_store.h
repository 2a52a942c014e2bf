#pragma once

#include "platform/seam/forwarding_store.h"

namespace platform {

// A store that makes the directories on the way to a file that is written, where they are missing.
// They go again if the file cannot be written. On a handheld the directory of the settings is
// always there, because the program lies in it; on a card that never had the program it is not.
class DirectoryMakingStore : public ForwardingStore {
  public:
    using ForwardingStore::ForwardingStore;

    std::FILE* _wfopen(const WCHAR* path, const WCHAR* mode) override;

  private:
    Failure failure_;  // of the file that was closed last
};

}  // namespace platform
