#pragma once

#include "core/wide_text.h"
#include "engine/registry_key.h"

// The result of reading a text value. The value's type is ignored: its bytes decide.
enum class TextRead {
    Failed,  // there is no such value, or it does not fit
    NoText,  // its size is odd, or there is no terminator and no room for one
    Whole,
};

// Reads a value into `text`, up to its first terminator or its end. The text is empty unless the
// result is Whole.
TextRead ReadText(const RegistryKey& key, const WCHAR* name, PathText& text);

// What is to be done with a directory. Moving loses nothing, so it accepts more paths than
// cleaning.
enum class PathUse { Cleaned, Moved };

// Whether a path that was read whole may be cleaned or moved. It must not be the root in any
// spelling, and one more backslash must fit. To be cleaned it must begin with a backslash; to be
// moved it need not, and is taken from the root then.
bool IsUsablePath(const PathText& text, PathUse use);

// The result of reading the path of a directory that is to be cleaned or moved.
enum class PathRead {
    Failed,    // reported in a box
    Unusable,  // there is a value, but no usable path; noted for the host
    Usable,
};

// Reads such a path into `path`. `failure` is the text of the box if the value cannot be read.
PathRead ReadPath(const RegistryKey& key, const WCHAR* name, const WCHAR* failure, PathUse use,
                  PathText& path);
