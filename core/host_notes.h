#pragma once

#include "core/plain_types.h"

// Notes for whoever looks after the device. They are told outside of it: nothing of them is shown
// to its user, and nothing waits for an answer.

// Something that should hold a path, `what`, holds none that can be used, but `content`, and is
// left as it is.
void NotePassedOver(const WCHAR* what, const WCHAR* content);

// What was to be stored as `what` could not be; what was stored there before is still there.
void NoteNotStored(const WCHAR* what);
