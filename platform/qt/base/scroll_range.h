#pragma once

#include <optional>

#include "core/window_operations.h"

namespace platform::qt {

// What a scroll bar stands for, and the rules by which it reports.
class ScrollRange {
  public:
    int lowest() const { return lowest_; }
    int highest() const { return highest_; }
    UINT page() const { return page_; }
    int position() const { return position_; }
    bool CanScroll() const { return highest_ > lowest_; }
    bool StaysOnView() const { return staysOnView_; }

    // Takes the fields that the mask names, and brings the position into the range.
    void Set(const SCROLLINFO& info);

    // Fills in the fields that the mask names.
    void Get(SCROLLINFO& info) const;

    // What the bar says for one of its line or page parts: the code itself if the whole step fits,
    // else the code of the end. Nothing when there is nothing to scroll.
    std::optional<WORD> CodeFor(WORD part) const;

    // The position nearest to `position` that is in the range.
    int Nearest(long long position) const;

  private:
    int lowest_ = 0;
    int highest_ = 100;
    UINT page_ = 0;
    int position_ = 0;
    bool staysOnView_ = false;
};

}  // namespace platform::qt
