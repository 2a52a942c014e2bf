#pragma once

#include <windows.h>

#include <string>

// Makes the directory `root`, a path that begins with "\\?\", the device's root.
void UseRoot(const std::wstring& root);

// Makes the keys below HKEY_CURRENT_USER\`registry` the device's registry.
void UseRegistry(const std::wstring& registry);

// Boxes are lines on standard output; with windows they are shown besides.
void UseWindows(bool hasWindows);
