#pragma once

#include "core/platform_types.h"

// Whether a start with this command line is a silent run: its first character is one of the
// letters of "silent". The rest is not looked at, because the StartUp shortcut leaves a stray quote
// behind the word.
bool IsSilentCommandLine(const WCHAR* commandLine);

// The program's entry. Carries out the run that the command line asks for and returns 0. The other
// two arguments are not used.
int WinMain(HINSTANCE hInstance, HINSTANCE hPrevInstance, WCHAR* lpCmdLine, int nShowCmd);
