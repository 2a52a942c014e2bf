#pragma once

#include <array>

#include "screens/control_list.h"

inline constexpr UINT kScreenCount = 6;

// The six pages of controls on the one display window; a page's index is that of its tab. All
// controls exist from CreateScreens to DestroyScreens, those of the current page are shown.
class CScreens {
  public:
    // Makes all controls, puts each one's first content into it and shows the first page. A control
    // that cannot be made leaves a null handle in its place, so that the item indices of the others
    // hold. Called once, after the display window has been made.
    void CreateScreens();

    // Destroys all controls. Called once.
    void DestroyScreens();

    // Hides the current page and shows the page `screen`, whose scroll range the display window
    // gets, with position 0. An index beyond the pages is told in a box and shows none. Returns
    // what SetScrollInfo returned.
    int SwitchScreenTo(UINT screen);

    // Carries out what a control does at once when its user acts on it. Most controls do nothing:
    // what they hold counts when the settings are captured. `id` is a control's ID; one that no
    // control has is reported in a box.
    void ControlCallback(UINT id);

    // A view of a page's controls, in the order of the catalogue. An index beyond the pages is told
    // in a box and gives the first page.
    CControlList GetScreenItems(UINT screen) const;

  private:
    struct Screen {
        CControlList items;
        UINT height = 0;  // of the content, in pixels
    };

    // Shows or hides a page's controls and returns its height. An index beyond the pages is told in
    // a box and has height 0.
    UINT ShowScreen(UINT screen, int command) const;

    UINT current_ = 0;
    std::array<Screen, kScreenCount> screens_;
};
