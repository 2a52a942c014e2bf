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

// Whether a text that was read whole may be cleaned or moved: it begins with a backslash, is not
// the root however it is spelt, and one more backslash fits behind it.
bool IsUsablePath(const PathText& text);

// Reads the path of a directory that is to be cleaned or moved. Returns whether it is there, in
// `path`. When the reading fails, the user is told so with `failure`; a value that came back and is
// no usable path is noted and passed over.
bool ReadLocation(const RegistryKey& key, const WCHAR* name, const WCHAR* failure, PathText& path);
