#pragma once

// The commands of the menus "Power" and "Help" that the device alone carries out. None of them
// saves anything, and none reports a failure: then the program just goes on.

// Switches the device off; the program goes on when its user has switched it on again.
void SwitchOff();

// Restarts the device at once.
void SoftReset();

// Asks the user twice, and after two times Yes erases and restarts the device.
void HardReset();

// Starts one more help viewer on the program's help page.
void OpenHelpIndex();
