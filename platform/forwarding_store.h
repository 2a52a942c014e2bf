#pragma once

#include "platform/device_store.h"

namespace platform {

// Hands every operation on to another store, which stays its owner's. A wrapper derives from it and
// changes the one thing that it is for.
class ForwardingStore : public DeviceStore {
  public:
    explicit ForwardingStore(DeviceStore& inner) : inner_(inner) {}

    HANDLE FindFirstFileW(const WCHAR* pattern, WIN32_FIND_DATA* data) override {
        return inner_.FindFirstFileW(pattern, data);
    }
    BOOL FindNextFileW(HANDLE find, WIN32_FIND_DATA* data) override {
        return inner_.FindNextFileW(find, data);
    }
    BOOL FindClose(HANDLE find) override { return inner_.FindClose(find); }
    BOOL DeleteFileW(const WCHAR* path) override { return inner_.DeleteFileW(path); }
    BOOL RemoveDirectoryW(const WCHAR* path) override { return inner_.RemoveDirectoryW(path); }
    BOOL CreateDirectoryW(const WCHAR* path, void* security) override {
        return inner_.CreateDirectoryW(path, security);
    }
    BOOL MoveFileW(const WCHAR* oldPath, const WCHAR* newPath) override {
        return inner_.MoveFileW(oldPath, newPath);
    }
    std::FILE* _wfopen(const WCHAR* path, const WCHAR* mode) override {
        return inner_._wfopen(path, mode);
    }
    DWORD GetModuleFileNameW(HINSTANCE module, WCHAR* buffer, DWORD limit) override {
        return inner_.GetModuleFileNameW(module, buffer, limit);
    }

  protected:
    DeviceStore& inner() { return inner_; }

  private:
    DeviceStore& inner_;
};

}  // namespace platform
