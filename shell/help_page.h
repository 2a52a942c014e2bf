#pragma once

#include <string_view>

#include "core/platform_types.h"

// The program's help page, in the form of the handheld's help viewer: HTML of which the viewer
// shows a topic at a time, from the requested anchor to the next marker. ASCII.
extern const std::string_view kHelpPage;

// The path on the device where the viewer looks for it.
inline constexpr const WCHAR* kHelpPagePath = TEXT("\\Windows\\brightdoc.htm");
