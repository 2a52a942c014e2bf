#pragma once

#include "core/platform_types.h"
#include "core/settings_record.h"

class CDisplayWindow;
class CMainWindow;
class CMenuBar;
class CScreens;
class CTabBar;

// The state of the process: one plain variable each, zero when the process starts. WinMain makes
// and deletes what the pointers name; everyone else only reads them.
extern HINSTANCE g_Instance;
extern bool g_Running;
extern bool g_Silent;  // the run works unattended from the stored options, without windows
extern CSettings* g_Settings;

// Null in a silent run.
extern CMenuBar* g_MenuBar;
extern CMainWindow* g_MainWindow;
extern CTabBar* g_TabBar;
extern CDisplayWindow* g_DisplayWindow;
extern CScreens* g_Screens;
