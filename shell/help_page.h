#pragma once

#include <string_view>

#include "core/platform_types.h"

// The program's help page, in the form of the handheld's help viewer: HTML of which the viewer
// shows a topic at a time, from the anchor that it is asked for to the next marker. ASCII.
extern const std::string_view kHelpPage;

// Where the viewer looks for it on the device.
inline constexpr const WCHAR* kHelpPagePath = TEXT("\\Windows\\brightdoc.htm");
