#pragma once

#include "core/wide_text.h"
#include "engine/registry_key.h"

// What came of reading a value that names a place in the file tree. Nobody asks for its type: what
// counts is what came back.
enum class TextRead {
    Failed,  // there is no such value, or it does not fit
    NoText,  // it came back, but is no text with its end: an odd size, or no room to end it
    Whole,
};

// Reads the text of a value into `text`, ended by its first terminator or by the length that came
// back. An empty text unless it is Whole.
TextRead ReadText(const RegistryKey& key, const WCHAR* name, PathText& text);

// What is to be done with a directory. Moving out of it loses nothing, wherever it turns out to be.
enum class PathUse { Cleaned, Moved };

// Whether a text that was read whole may be cleaned or moved: it is not the root however it is
// spelt, one more backslash fits behind it, and where it is cleaned it begins with one; where it is
// moved it is taken from the root without.
bool IsUsablePath(const PathText& text, PathUse use);

// What came of reading the path of a directory that is to be cleaned or moved.
enum class PathRead {
    Failed,    // the user was told
    Unusable,  // a value came back, but is no usable path, and was noted as that
    Usable,
};

// Reads such a path into `path`; `failure` is what the user is told.
PathRead ReadPath(const RegistryKey& key, const WCHAR* name, const WCHAR* failure, PathUse use,
                  PathText& path);
