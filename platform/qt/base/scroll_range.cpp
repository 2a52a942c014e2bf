#include "platform/qt/base/scroll_range.h"

#include <algorithm>

namespace platform::qt {

namespace {

// The pages move by this much for a line. A window system cannot know it, but a page that moves on
// its own account must not be made to move further than there is room.
constexpr long long kLine = 3;

}  // namespace

void ScrollRange::Set(const SCROLLINFO& info) {
    if ((info.fMask & SIF_RANGE) != 0) {
        lowest_ = info.nMin;
        highest_ = std::max(info.nMin, info.nMax);
    }
    if ((info.fMask & SIF_PAGE) != 0) {
        page_ = info.nPage;
    }
    staysOnView_ = staysOnView_ || (info.fMask & SIF_DISABLENOSCROLL) != 0;
    position_ = Nearest((info.fMask & SIF_POS) != 0 ? info.nPos : position_);
}

void ScrollRange::Get(SCROLLINFO& info) const {
    if ((info.fMask & SIF_RANGE) != 0) {
        info.nMin = lowest_;
        info.nMax = highest_;
    }
    if ((info.fMask & SIF_PAGE) != 0) {
        info.nPage = page_;
    }
    if ((info.fMask & SIF_POS) != 0) {
        info.nPos = position_;
    }
    if ((info.fMask & SIF_TRACKPOS) != 0) {
        info.nTrackPos = position_;
    }
}

std::optional<WORD> ScrollRange::CodeFor(WORD part) const {
    if (!CanScroll()) {
        return std::nullopt;
    }
    const bool line = part == SB_LINEUP || part == SB_LINEDOWN;
    const bool up = part == SB_LINEUP || part == SB_PAGEUP;
    const long long step = line ? kLine : std::max<long long>(page_, 1);
    const long long room = up ? static_cast<long long>(position_) - lowest_
                              : static_cast<long long>(highest_) - position_;
    if (step <= room) {
        return part;
    }
    return up ? SB_TOP : SB_BOTTOM;
}

int ScrollRange::Nearest(long long position) const {
    return static_cast<int>(std::clamp<long long>(position, lowest_, highest_));
}

}  // namespace platform::qt
