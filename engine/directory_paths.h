#pragma once

#include "core/platform_types.h"
#include "core/wide_text.h"

// Puts the canonical path of the directory that `path` names into `canonical`: each name spelt as
// in the file tree, with one backslash before each and none at the end, so that the root is the
// empty text. Two canonical paths name one directory exactly if their texts are equal. Returns
// false, and leaves the text undefined, if `path` names no directory (GetLastError has the reason)
// or if the canonical path and one more backslash do not fit.
bool CanonicalDirectory(const WCHAR* path, PathText& canonical);

// Whether the directory `inner` is `outer` or lies below it. Both are canonical; `inner` may end in
// a backslash.
bool IsSameOrInside(const WCHAR* inner, const WCHAR* outer);

// Appends a backslash and returns whether it fitted; if not, the path is unchanged.
bool AppendBackslash(PathText& path);
