#pragma once

#include "core/wide_text.h"
#include "engine/entry_lookup.h"

// Looks up what the command line of a shortcut starts. Where the path ends and the arguments begin
// is not always clear, so all readings are tried: NotThere only if it begins with a path and no
// reading leads to an entry. A command line that begins with no path, or with the root's, counts as
// found. The whole of it, and the part that its quotes or its extension end, may be patterns.
LookupResult LookUpTarget(WideView commandLine);
