#pragma once

// The commands of the menus "Power" and "Help" that the platform carries out. They save nothing and
// report no failure: the program goes on then.

// Switches the device off; the program goes on after its user has switched it on again.
void SwitchOff();

// Restarts the device at once.
void SoftReset();

// Asks the user twice and, if both answers are Yes, erases and restarts the device.
void HardReset();

// Starts another help viewer with the program's help page.
void OpenHelpIndex();
