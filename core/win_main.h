#pragma once

#include "core/platform_types.h"

// Whether a start with this command line is a silent run: its first character is one of the letters
// of "silent". The rest is ignored, because the StartUp shortcut leaves a stray quote after the
// word.
bool IsSilentCommandLine(const WCHAR* commandLine);

// The program's entry: carries out the run that the command line asks for and returns 0. The other
// two arguments are ignored.
int WinMain(HINSTANCE hInstance, HINSTANCE hPrevInstance, WCHAR* lpCmdLine, int nShowCmd);
