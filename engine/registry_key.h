#pragma once

#include <cstddef>

#include "core/registry_operations.h"
#include "core/wide_text.h"

// A key of the registry, closed by the destructor. Reading and writing fail if it could not be
// opened.
class RegistryKey {
  public:
    RegistryKey(HKEY root, const WCHAR* path, DWORD access) {
        if (RegOpenKeyExW(root, path, 0, access, &key_) != ERROR_SUCCESS) {
            key_ = nullptr;
        }
    }
    ~RegistryKey() { RegCloseKey(key_); }
    RegistryKey(const RegistryKey&) = delete;
    RegistryKey& operator=(const RegistryKey&) = delete;

    explicit operator bool() const { return key_ != nullptr; }
    HKEY get() const { return key_; }

    // Writes a text without its terminator. This and WriteNumber report no failure.
    void WriteText(const WCHAR* name, const WCHAR* text) {
        Write(name, REG_SZ, text, wcslen(text) * sizeof(WCHAR));
    }

    void WriteNumber(const WCHAR* name, DWORD number) {
        Write(name, REG_DWORD, &number, sizeof number);
    }

  private:
    void Write(const WCHAR* name, DWORD type, const void* data, std::size_t size) {
        RegSetValueExW(key_, name, 0, type, static_cast<const BYTE*>(data),
                       static_cast<DWORD>(size));
    }

    HKEY key_ = nullptr;
};
