#include "engine/registry_path.h"

#include <algorithm>

#include "core/error_box.h"
#include "core/host_notes.h"

TextRead ReadText(const RegistryKey& key, const WCHAR* name, PathText& text) {
    DWORD size = sizeof text;
    const LONG result = RegQueryValueExW(key.get(), name, nullptr, nullptr,
                                         reinterpret_cast<BYTE*>(text.data()), &size);
    const std::size_t length = result == ERROR_SUCCESS ? size / sizeof(WCHAR) : 0;
    const auto end = text.begin() + static_cast<std::ptrdiff_t>(length);
    const bool hasEnd = length < text.size() || std::find(text.begin(), end, TEXT('\0')) != end;
    if (result != ERROR_SUCCESS || size % sizeof(WCHAR) != 0 || !hasEnd) {
        text[0] = 0;
        return result == ERROR_SUCCESS ? TextRead::NoText : TextRead::Failed;
    }
    // What the buffer held after the value is not part of it.
    std::fill(end, text.end(), TEXT('\0'));
    return TextRead::Whole;
}

bool IsUsablePath(const PathText& text, PathUse use) {
    const WideView path(text.data());
    return (use == PathUse::Moved || path.starts_with(TEXT('\\'))) &&
           path.find_first_not_of(TEXT('\\')) != WideView::npos && path.size() + 1 < text.size();
}

PathRead ReadPath(const RegistryKey& key, const WCHAR* name, const WCHAR* failure, PathUse use,
                  PathText& path) {
    const TextRead read = ReadText(key, name, path);
    if (read == TextRead::Failed) {
        ShowError(failure);
        return PathRead::Failed;
    }
    if (read == TextRead::NoText || !IsUsablePath(path, use)) {
        NoteUnusablePath(name, path.data());
        return PathRead::Unusable;
    }
    return PathRead::Usable;
}
