#pragma once

#include <QApplication>
#include <QColor>
#include <QIcon>

#include "core/window_operations.h"

namespace platform::qt {

// Measures of the handheld's screen, in its pixels.
inline constexpr int kScreenWidth = 240;
inline constexpr int kScreenHeight = 320;
inline constexpr int kCaptionHeight = 26;
inline constexpr int kMenuBarHeight = 26;
inline constexpr int kScrollBarWidth = 13;
inline constexpr int kFontHeight = 11;

// The one typeface of all windows, narrow enough for the longest labels.
inline constexpr char kFontFamily[] = "DejaVu Sans Condensed";
inline constexpr char kFontPackage[] = "fonts-dejavu-extra";

// Gives the application the handheld's look, whatever the desktop's settings say.
void ApplyHandheldStyle(QApplication& application);

// The picture of a handheld, in any size.
QIcon DeviceIcon();

// The colour of a class's background brush; white for one that is not the platform's own.
QColor BackgroundColor(HBRUSH brush);

}  // namespace platform::qt
