#pragma once

#include "core/plain_types.h"
#include "core/settings_record.h"

// The state of the process: one plain variable each, zero when the process starts. WinMain makes
// and deletes what the pointers name; everyone else only reads them.
extern HINSTANCE g_Instance;
extern bool g_Running;
extern bool g_Silent;  // the run works unattended from the stored options, without windows
extern CSettings* g_Settings;
