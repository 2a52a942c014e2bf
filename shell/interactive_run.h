#pragma once

// Carries out the interactive run: makes the windows, the controls and the settings, handles
// messages until a command clears g_Running, and destroys everything again. It goes on without a
// window that cannot be made. Leaves all process-wide state as it was when the process started.
void RunInteractive();
