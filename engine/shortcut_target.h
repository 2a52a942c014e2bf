#pragma once

#include "core/wide_text.h"

// Whether what the command line of a shortcut starts is there, as far as that can be told: false
// only when it begins with a path, and no way to tell that path from its arguments leads to an
// entry. A command line that begins with no path, or with that of the root, counts as there.
bool CommandLineTargetExists(WideView commandLine);

// The path at the beginning of a command line that begins with a quote, told by its extension:
// nothing is looked at. The first and the last character go; unless the fourth from the end is a
// full stop then, everything behind the third one after the last full stop goes too.
WideView PathByExtension(WideView quoted);
