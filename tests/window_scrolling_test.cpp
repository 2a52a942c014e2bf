// How a page and its bar scroll.

#include <QScrollBar>
#include <QWheelEvent>
#include <algorithm>
#include <array>

#include "core/window_system.h"
#include "tests/display_fixture.h"

namespace {

using Codes = std::vector<WORD>;

void SetRange(HWND window, int highest, UINT page, int position) {
    const SCROLLINFO info = {
        28, SIF_RANGE | SIF_PAGE | SIF_POS | SIF_DISABLENOSCROLL, 0, highest, page, position, 0};
    SetScrollInfo(window, SB_VERT, &info, TRUE);
}

int PositionOf(HWND window) {
    SCROLLINFO info = {28, SIF_ALL, 0, 0, 0, 0, 0};
    EXPECT_NE(GetScrollInfo(window, SB_VERT, &info), 0);
    return info.nPos;
}

QScrollBar& PageBar() {
    for (auto* const bar : Host().findChildren<QScrollBar*>()) {
        if (bar->width() == 13 && bar->height() == 239) {
            return *bar;
        }
    }
    ADD_FAILURE() << "no bar";
    std::abort();
}

// What a page does with the codes of its bar.
LRESULT ScrollPage(const Told& told) {
    if (told.message != WM_VSCROLL) {
        return 0;
    }
    SCROLLINFO info = {28, SIF_ALL, 0, 0, 0, 0, 0};
    GetScrollInfo(told.window, SB_VERT, &info);
    const int before = info.nPos;
    const int page = static_cast<int>(info.nPage);
    const std::array places = {
        before - 3, before + 3, before - page, before + page, int{HIWORD(told.wParam)},
        before,     info.nMin,  info.nMax};
    info.nPos = places.at(LOWORD(told.wParam));
    ScrollWindowEx(told.window, 0, before - info.nPos, nullptr, nullptr, nullptr, nullptr,
                   SW_SCROLLCHILDREN);
    SetScrollInfo(told.window, SB_VERT, &info, TRUE);
    return 1;
}

TEST_F(DisplayTest, PositionsAreBroughtIntoTheRange) {
    const struct {
        int highest;
        UINT page;
        int position;
        int stored;
    } rows[] = {{157, 3, 157, 157}, {157, 3, 158, 157}, {157, 3, -5, 0}, {157, 500, 156, 156},
                {-217, 3, 0, 0},    {-217, 3, 9, 0},    {0, 0, 1, 0}};
    for (const auto& row : rows) {
        const SCROLLINFO info = {28, 15, 0, row.highest, row.page, row.position, 0};
        EXPECT_EQ(SetScrollInfo(page_, SB_VERT, &info, TRUE), row.stored);
        EXPECT_EQ(PositionOf(page_), row.stored);
        EXPECT_TRUE(PageBar().isVisible());
        EXPECT_EQ(PageBar().isEnabled(), row.highest > 0);
    }
    EXPECT_EQ(GetScrollInfo(main_, SB_VERT, nullptr), 0);
}

TEST_F(DisplayTest, TheBarSaysOnlyStepsThatFit) {
    const struct {
        int highest;
        int position;
        bool up;
        int code;  // -1: none
    } rows[] = {{157, 0, false, SB_LINEDOWN}, {157, 154, false, SB_LINEDOWN},
                {157, 155, false, SB_BOTTOM}, {157, 3, true, SB_LINEUP},
                {157, 2, true, SB_TOP},       {-217, 0, false, -1},
                {-217, 0, true, -1}};
    for (const auto& row : rows) {
        SetRange(page_, row.highest, 3, row.position);
        QScrollBar& bar = PageBar();
        Click(bar, QPoint(6, row.up ? 4 : bar.height() - 4));
        Dispatch();
        const AllTold step = {{page_, WM_VSCROLL, static_cast<WPARAM>(row.code), 0}};
        EXPECT_EQ(TakeTold(), row.code < 0 ? AllTold{} : step) << row.position;
        EXPECT_EQ(PositionOf(page_), std::max(0, row.position)) << "the bar has moved by itself";
        EXPECT_EQ(bar.value(), PositionOf(page_));
    }
}

// Many parts are pressed before the program looks at the first.
TEST_F(DisplayTest, APageNeverDriftsFromItsPosition) {
    const HWND shown = Add(TEXT("STATIC"), 0, {2, 300, 100, 318}, 5, TEXT("x"));
    const HWND hidden = Add(TEXT("STATIC"), 0, {2, 500, 100, 518}, 6, TEXT("x"));
    ShowWindow(hidden, SW_HIDE);
    SetRange(page_, 157, 3, 0);
    g_hook = ScrollPage;
    QScrollBar& bar = PageBar();
    for (int round = 0; round < 60; ++round) {
        for (int press = 0; press < 1 + round % 4; ++press) {
            Click(bar, QPoint(6, bar.height() - (round % 3 == 0 ? 4 : 40)));
        }
        QWheelEvent wheel(QPointF(5, 5), Host().mapToGlobal(QPointF(5, 5)), {},
                          {0, round % 5 == 0 ? 120 : -30}, Qt::NoButton, Qt::NoModifier,
                          Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(Control(5).parentWidget(), &wheel);
        Dispatch();
        const int position = PositionOf(page_);
        EXPECT_EQ(BoundsOf(shown).top(), 30 + 300 - position);
        EXPECT_EQ(BoundsOf(hidden).top(), 30 + 500 - position);
        EXPECT_EQ(bar.value(), position);
    }
    EXPECT_GT(PositionOf(page_), 0);
    SetRange(page_, 157, 3, 155);
    Click(bar, QPoint(6, bar.height() - 4));
    Dispatch();
    EXPECT_EQ(PositionOf(page_), 157);
}

TEST_F(DisplayTest, TabBringsTheNextControlIntoView) {
    const HWND first = Add(TEXT("BUTTON"), BS_AUTOCHECKBOX, {2, 2, 102, 20}, 5, TEXT("First"));
    const HWND last = Add(TEXT("BUTTON"), BS_PUSHBUTTON, {2, 300, 102, 318}, 6, TEXT("Last"));
    SetRange(page_, 157, 3, 0);
    g_hook = ScrollPage;
    SetFocus(first);
    QTest::keyClick(&Control(5), Qt::Key_Tab);
    Dispatch();
    EXPECT_TRUE(Control(6).hasFocus());
    EXPECT_EQ(BoundsOf(last).bottom(), 268);
    QTest::keyClick(&Control(6), Qt::Key_Backtab, Qt::ShiftModifier);
    Dispatch();
    EXPECT_EQ(BoundsOf(first).top(), 30);
    TakeTold();
    QTest::keyClick(&Control(6), Qt::Key_Return);
    QTest::keyClick(&Control(6), Qt::Key_Space);
    QTest::keyClick(&Control(6), Qt::Key_Escape);
    Dispatch();
    EXPECT_EQ(CodesOf(TakeTold()), (Codes{BN_CLICKED, BN_CLICKED}));
    SetFocus(first);
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Escape, Qt::Key_Down, Qt::Key_Right}) {
        QTest::keyClick(&Control(5), key);
        EXPECT_TRUE(Control(5).hasFocus());
    }
    ShowWindow(first, SW_HIDE);
    EXPECT_FALSE(Control(6).hasFocus()) << "the keyboard has gone on to a neighbour";
    Dispatch();
    EXPECT_TRUE(TakeTold().empty());
}

}  // namespace
