#pragma once

#include "core/platform_types.h"
#include "core/wide_text.h"

// Puts the canonical path of the directory that `path` names into `canonical`: each name spelt as
// it stands in the file tree, one backslash in front of each and none at the end, so that the root
// is the empty text. Two canonical paths name one directory exactly when their texts are equal.
// Returns false, with an undefined text, when `path` names no directory, with the reason for
// GetLastError, or when its canonical path does not fit with a backslash behind it.
bool CanonicalDirectory(const WCHAR* path, PathText& canonical);

// Whether the directory `inner` is `outer` or lies below it. Both are canonical; `inner` may have a
// backslash behind it.
bool IsSameOrInside(const WCHAR* inner, const WCHAR* outer);

// Returns whether it fitted; the path is unchanged if not.
bool AppendBackslash(PathText& path);
