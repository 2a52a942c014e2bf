#pragma once

#include <array>

#include "screens/control_list.h"

inline constexpr UINT kScreenCount = 6;

// The six pages of controls on the one display window; a page's index is that of its tab. All
// controls exist from CreateScreens to DestroyScreens, those of the current page are shown.
class CScreens {
  public:
    // Makes all controls with their initial content and shows the first page. A control that cannot
    // be made leaves a null handle in its place, so that the indices of the others stay right.
    // Called once, after the display window was made.
    void CreateScreens();

    // Destroys all controls. Called once.
    void DestroyScreens();

    // Hides the current page, shows the page `screen` and gives the display window its scroll
    // range, at position 0. An index beyond the pages shows none and is reported in a box. Returns
    // the result of SetScrollInfo.
    int SwitchScreenTo(UINT screen);

    // Carries out the immediate action of the control with this ID. Most controls have none: their
    // content counts when the settings are captured. An ID that no control has is reported in a
    // box.
    void ControlCallback(UINT id);

    // A view of a page's controls, in the order of the catalogue. An index beyond the pages gives
    // the first page and is reported in a box.
    CControlList GetScreenItems(UINT screen) const;

  private:
    struct Screen {
        CControlList items;
        UINT height = 0;  // of the content, in pixels
    };

    // Shows or hides a page's controls and returns its height. An index beyond the pages has height
    // 0 and is reported in a box.
    UINT ShowScreen(UINT screen, int command) const;

    UINT current_ = 0;
    std::array<Screen, kScreenCount> screens_;
};
