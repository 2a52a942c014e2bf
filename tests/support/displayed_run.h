#pragma once

#include <QWidget>
#include <deque>
#include <functional>
#include <initializer_list>

#include "tests/support/temporary_device.h"

// What a user does, a step each time that the program waits.
using Steps = std::vector<std::function<void()>>;

// The step that taps a control.
std::function<void()> Tap(int id);

void NextTab();

// Presses a key in the menu that is open, or in the main window.
void PressKey(Qt::Key key);

// Adds the keys that choose an item of the menus.
void AddMenu(Steps& steps, std::initializer_list<Qt::Key> keys);

// Runs the program on a device and on an offscreen display; after the last step taps the OK.
// Boxes get the next one of `answers`, or are closed where there is none. Returns the boxes,
// "[caption] text"; `calls` receives "erase", "restart" and "start IMAGE WORDS", none of which
// happens.
Entries RunDisplayed(const TemporaryDevice& device, const Steps& steps,
                     std::deque<int> answers = {}, Entries* calls = nullptr);
