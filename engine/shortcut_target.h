#pragma once

#include "core/wide_text.h"
#include "engine/entry_lookup.h"

// Looks for what the command line of a shortcut starts, as far as that can be told: not there only
// when it begins with a path, and no way to tell that path from its arguments leads to an entry. A
// command line that begins with no path, or with that of the root, counts as found. The whole of it
// and what its quotes or its extension end may be patterns.
LookupResult LookUpTarget(WideView commandLine);
