#pragma once

// Carries out the interactive run: makes the windows, the controls and the settings, serves
// messages until a command clears g_Running, and takes everything down again. A window that cannot
// be made ends nothing. Leaves all process-wide state as it was when the process started.
void RunInteractive();
