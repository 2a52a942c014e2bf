#include "platform/seam/device_store.h"

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

DeviceStore& StoreInUse::Current() {
    return *g_store;
}

}  // namespace platform

DWORD GetLastError() {
    return platform::ErrorCodeOf(g_store->LastFailure());
}

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

BOOL CreateProcessW(const WCHAR* image, const WCHAR* commandLine, void* processSecurity,
                    void* threadSecurity, BOOL inherit, DWORD flags, void* environment,
                    WCHAR* directory, void* startup, void* information) {
    return g_store->CreateProcessW(image, commandLine, processSecurity, threadSecurity, inherit,
                                   flags, environment, directory, startup, information);
}

BOOL SHGetShortcutTarget(const WCHAR* path, WCHAR* buffer, int limit) {
    return g_store->SHGetShortcutTarget(path, buffer, limit);
}

BOOL SHCreateShortcut(const WCHAR* path, const WCHAR* target) {
    return g_store->SHCreateShortcut(path, target);
}

BOOL KernelIoControl(DWORD code, void* input, DWORD inputSize, void* output, DWORD outputSize,
                     DWORD* returned) {
    return g_store->KernelIoControl(code, input, inputSize, output, outputSize, returned);
}

void SetCleanRebootFlag() {
    g_store->SetCleanRebootFlag();
}

LONG RegOpenKeyExW(HKEY key, const WCHAR* subkey, DWORD options, DWORD access, HKEY* result) {
    return g_store->RegOpenKeyExW(key, subkey, options, access, result);
}

LONG RegQueryValueExW(HKEY key, const WCHAR* name, DWORD* reserved, DWORD* type, BYTE* data,
                      DWORD* size) {
    return g_store->RegQueryValueExW(key, name, reserved, type, data, size);
}

LONG RegSetValueExW(HKEY key, const WCHAR* name, DWORD reserved, DWORD type, const BYTE* data,
                    DWORD size) {
    return g_store->RegSetValueExW(key, name, reserved, type, data, size);
}

LONG RegEnumKeyExW(HKEY key, DWORD index, WCHAR* name, DWORD* size, DWORD* reserved,
                   WCHAR* className, DWORD* classSize, void* lastWriteTime) {
    return g_store->RegEnumKeyExW(key, index, name, size, reserved, className, classSize,
                                  lastWriteTime);
}

LONG RegDeleteKeyW(HKEY key, const WCHAR* subkey) {
    return g_store->RegDeleteKeyW(key, subkey);
}

LONG RegCloseKey(HKEY key) {
    return g_store->RegCloseKey(key);
}
