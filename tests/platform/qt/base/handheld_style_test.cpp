// The look of frames, arrows and tabs, by the pixels of the desktop.

#include <QImage>

#include "core/window_operations.h"
#include "tests/support/display_fixture.h"

namespace {

class HandheldStyleTest : public DisplayTest, public testing::WithParamInterface<int> {
  protected:
    HandheldStyleTest() : DisplayTest(GetParam()) {}

    // The picture of a part of the screen, which is given in pixels of the handheld.
    static QImage Picture(const QWidget& widget, const QRect& part) {
        return Host().grab(part.translated(widget.mapTo(&Host(), QPoint(0, 0)))).toImage();
    }

    static int DarkPixels(const QImage& picture) {
        int count = 0;
        for (int place = 0; place < picture.width() * picture.height(); ++place) {
            const QRgb color = picture.pixel(place % picture.width(), place / picture.width());
            count += qGray(color) < 0x70 ? 1 : 0;
        }
        return count;
    }
};

INSTANTIATE_TEST_SUITE_P(Scales, HandheldStyleTest, testing::Values(1, 2, 3, 5, 8));

TEST_P(HandheldStyleTest, AFrameIsOnePixelOfTheHandheldWideOnEverySide) {
    Add(TEXT("BUTTON"), BS_PUSHBUTTON, {2, 2, 102, 20}, 5, TEXT(""));
    Add(TEXT("EDIT"), WS_BORDER, {2, 22, 102, 40}, 6);
    Add(TEXT("COMBOBOX"), CBS_DROPDOWNLIST, {2, 42, 72, 114}, 7);
    Add(TEXT("LISTBOX"), WS_BORDER, {2, 64, 102, 114}, 8);
    for (const int id : {5, 6, 7, 8}) {
        const QRect whole = Control(id).rect();
        const int middle = whole.height() / 2;
        for (const QRect& side : {QRect(0, middle, 3, 1), QRect(whole.width() - 3, middle, 3, 1),
                                  QRect(9, 0, 1, 3), QRect(9, whole.height() - 3, 1, 3)}) {
            EXPECT_EQ(DarkPixels(Picture(Control(id), side)), GetParam() * GetParam())
                << id << ": " << side.x() << ' ' << side.y();
        }
    }
    EXPECT_EQ(Picture(Control(7), {3, 3, 1, 1}).pixel(0, 0), 0xFFFFFFFF) << "the field of a combo";
}

TEST_P(HandheldStyleTest, MarksAreLargeEnoughToBeSeen) {
    const HWND box = Add(TEXT("BUTTON"), BS_AUTOCHECKBOX, {2, 2, 102, 20}, 5, TEXT("Box"));
    Send(box, BM_SETCHECK, 1);
    Add(TEXT("COMBOBOX"), CBS_DROPDOWNLIST, {2, 42, 72, 114}, 7);
    const SCROLLINFO info = {28, 15, 0, 157, 3, 0, 0};
    SetScrollInfo(page_, SB_VERT, &info, TRUE);
    const QWidget& page = *Control(5).parentWidget()->parentWidget();
    const int area = GetParam() * GetParam();
    for (const auto& [widget, part] : {std::pair(&std::as_const(Control(5)), QRect(0, 0, 13, 18)),
                                       {&Control(7), {54, 2, 15, 16}},
                                       {&page, {219, 0, 13, 13}},
                                       {&page, {219, 226, 13, 13}}}) {
        EXPECT_GE(DarkPixels(Picture(*widget, part)), 8 * area) << part.y();
    }
}

TEST_P(HandheldStyleTest, NothingStandsBetweenTheChosenTabAndItsPage) {
    AddTabs({u"One", u"Two"});
    const auto at = [](int x, int y) { return Picture(Host(), {x, y, 1, 1}).pixel(0, 0); };
    for (int y = 26 + 244; y < 26 + 251; ++y) {
        EXPECT_EQ(at(4, y), 0xFFFFFFFF) << y;
    }
    EXPECT_LT(qGray(at(50, 26 + 247)), 0x70);
}

}  // namespace
