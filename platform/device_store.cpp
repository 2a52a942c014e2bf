#include "platform/device_store.h"

namespace {

platform::DeviceStore* g_store = nullptr;

}  // namespace

namespace platform {

StoreInUse::StoreInUse(DeviceStore& store) {
    g_store = &store;
}

StoreInUse::~StoreInUse() {
    g_store = nullptr;
}

}  // namespace platform

HANDLE FindFirstFileW(const WCHAR* pattern, WIN32_FIND_DATA* data) {
    return g_store->FindFirstFileW(pattern, data);
}

BOOL FindNextFileW(HANDLE find, WIN32_FIND_DATA* data) {
    return g_store->FindNextFileW(find, data);
}

BOOL FindClose(HANDLE find) {
    return g_store->FindClose(find);
}

BOOL DeleteFileW(const WCHAR* path) {
    return g_store->DeleteFileW(path);
}

BOOL RemoveDirectoryW(const WCHAR* path) {
    return g_store->RemoveDirectoryW(path);
}

BOOL CreateDirectoryW(const WCHAR* path, void* security) {
    return g_store->CreateDirectoryW(path, security);
}

BOOL MoveFileW(const WCHAR* oldPath, const WCHAR* newPath) {
    return g_store->MoveFileW(oldPath, newPath);
}

std::FILE* _wfopen(const WCHAR* path, const WCHAR* mode) {
    return g_store->_wfopen(path, mode);
}

DWORD GetModuleFileNameW(HINSTANCE module, WCHAR* buffer, DWORD limit) {
    return g_store->GetModuleFileNameW(module, buffer, limit);
}
