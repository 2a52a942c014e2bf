// The contract of the window system, on the toolkit's windows and on the tests' own.

#include <array>
#include <tuple>

#include "core/window_operations.h"
#include "tests/support/display_fixture.h"
#include "tests/support/fake_windows.h"

namespace {

struct Implementation {
    const char* name;
    std::unique_ptr<platform::WindowSystem> (*open)();
    void (*tap)(platform::WindowSystem& windows, HWND button, WORD id);  // a button of the page
};

const Implementation kImplementations[] = {
    {"Qt", [] { return std::unique_ptr<platform::WindowSystem>(OpenUnseen()); },
     [](auto& /*windows*/, HWND /*button*/, WORD id) { Click(Control(id)); }},
    {"Fake", [] { return std::unique_ptr<platform::WindowSystem>(new FakeWindows); },
     [](auto& windows, HWND button, WORD id) {
         auto& fake = dynamic_cast<FakeWindows&>(windows);
         fake.Post(fake.At(button).parent, WM_COMMAND, MAKELONG(id, BN_CLICKED),
                   reinterpret_cast<LPARAM>(button));
     }}};

class WindowSystemTest : public WindowsTest, public testing::WithParamInterface<Implementation> {
  protected:
    WindowSystemTest() : WindowsTest(GetParam().open()) {}

    HWND AddButton(WORD id) {
        return Add(TEXT("BUTTON"), BS_PUSHBUTTON, {2, 20 * id, 102, 20 * id + 18}, id);
    }
    void Tap(HWND button, WORD id) { GetParam().tap(windows(), button, id); }
};

INSTANTIATE_TEST_SUITE_P(Windows, WindowSystemTest, testing::ValuesIn(kImplementations),
                         [](const auto& tested) { return tested.param.name; });

using Bounds = std::array<int, 4>;

Bounds BoundsIn(BOOL (*operation)(HWND, RECT*), HWND window) {
    RECT bounds{};
    EXPECT_NE(operation(window, &bounds), 0);
    return {bounds.left, bounds.top, bounds.right, bounds.bottom};
}

TEST_P(WindowSystemTest, EveryOperationFailsOnAHandleThatNamesNothing) {
    const HWND dead = Add(TEXT("EDIT"), WS_BORDER, {0, 0, 50, 18}, 7);
    EXPECT_NE(DestroyWindow(dead), 0);
    RECT rectangle = {1, 2, 3, 4};
    SCROLLINFO info = {28, SIF_ALL, 0, 0, 0, 0, 0};
    SHMENUBARINFO bar = {36, dead, SHCMBF_HMENU, kMenuResource, nullptr, 0, 0, nullptr, 0};
    WCHAR text[] = TEXT("zz");
    const MSG message = {dead, WM_COMMAND, 0, 0, 0, {0, 0}};
    for (const HWND window : {HWND{nullptr}, dead, reinterpret_cast<HWND>(DWORD_PTR{0x7777})}) {
        EXPECT_EQ(DestroyWindow(window), 0);
        EXPECT_EQ(ShowWindow(window, SW_SHOWNORMAL), 0);
        EXPECT_EQ(UpdateWindow(window), 0);
        EXPECT_EQ(GetClientRect(window, &rectangle), 0);
        EXPECT_EQ(GetWindowRect(window, &rectangle), 0);
        EXPECT_EQ(MoveWindow(window, 0, 0, 1, 1, FALSE), 0);
        EXPECT_EQ(SetWindowTextW(window, TEXT("text")), 0);
        for (const UINT asked : {WM_SETTEXT, BM_GETCHECK, CB_GETCURSEL, LB_GETCOUNT, TBM_GETPOS,
                                 TCM_GETCURSEL, TCM_INSERTITEM, TVM_GETITEM}) {
            EXPECT_EQ(Send(window, asked), 0) << asked;
            EXPECT_EQ(SendDlgItemMessageW(window, 7, asked, 0, 0), 0) << asked;
        }
        EXPECT_EQ(Send(window, WM_GETTEXT, 3, text), 0);
        EXPECT_EQ(DefWindowProcW(window, WM_COMMAND, 0, 0), 0);
        EXPECT_EQ(GetScrollInfo(window, SB_VERT, &info), 0);
        EXPECT_EQ(SetScrollInfo(window, SB_VERT, &info, TRUE), 0);
        EXPECT_EQ(ScrollWindowEx(window, 0, 1, nullptr, &rectangle, nullptr, nullptr, 1), 0);
        bar.hwndParent = window;
        EXPECT_EQ(SHCreateMenuBar(&bar), 0);
        const SHINITDLGINFO dialog = {SHIDIM_FLAGS, window, SHIDIF_SIZEDLG};
        EXPECT_EQ(SHInitDialog(&dialog), 0);
        for (const auto& [name, style] : {std::pair{TEXT("EDIT"), 0U}, {TEXT("Kept"), WS_CHILD}}) {
            EXPECT_EQ(CreateWindowExW(0, name, TEXT(""), style, 0, 0, 9, 9, window, nullptr,
                                      nullptr, nullptr),
                      nullptr);
        }
        SetFocus(window);
    }
    EXPECT_EQ(rectangle.bottom, 4);
    EXPECT_EQ(std::u16string(text), u"zz");
    EXPECT_EQ(SendDlgItemMessageW(page_, 7, WM_SETTEXT, 0, 0), 0);
    EXPECT_EQ(DispatchMessageW(&message), 0);
    EXPECT_NE(Add(TEXT("EDIT"), 0, {0, 0, 50, 18}, 7), dead);
}

TEST_P(WindowSystemTest, AClassIsKnownOnceAndStaysWhileAWindowOfItLives) {
    WNDCLASS record{};
    record.style = CS_HREDRAW | CS_VREDRAW;
    record.hbrBackground = SystemColorBrush(COLOR_WINDOW);
    record.lpszClassName = TEXT("Second");
    EXPECT_EQ(RegisterClassW(&record), 0);
    record.lpfnWndProc = DefWindowProcW;
    EXPECT_EQ(UnregisterClassW(TEXT("Second"), nullptr), 0);
    EXPECT_NE(RegisterClassW(&record), 0);
    for (const WCHAR* const taken : {TEXT("Second"), TEXT("KEPT"), TEXT("Edit")}) {
        record.lpszClassName = taken;
        EXPECT_EQ(RegisterClassW(&record), 0);
    }
    EXPECT_NE(UnregisterClassW(TEXT("second"), nullptr), 0);
    EXPECT_EQ(Open(TEXT("Second")), nullptr);
    EXPECT_EQ(UnregisterClassW(TEXT("Kept"), nullptr), 0);
    DestroyWindow(page_);
    EXPECT_EQ(UnregisterClassW(TEXT("Kept"), nullptr), 0);
    const HWND another = Open(TEXT("Kept"));
    EXPECT_NE(another, nullptr) << "forgotten although it could not be";
    DestroyWindow(main_);
    DestroyWindow(another);
    EXPECT_NE(UnregisterClassW(TEXT("Kept"), nullptr), 0);
}

// Each row goes on from what the one before it has left.
TEST_P(WindowSystemTest, AScrollBarKeepsWhatItIsGivenWithinItsRange) {
    constexpr UINT kSet = SIF_RANGE | SIF_PAGE | SIF_POS | SIF_DISABLENOSCROLL;
    const struct {
        UINT mask;
        int lowest, highest;
        UINT page;
        int position;
        Bounds kept;  // lowest, highest, page and position
    } rows[] = {{0, 9, 9, 9, 9, {0, 100, 0, 0}},
                {kSet, 0, 157, 3, 157, {0, 157, 3, 157}},
                {kSet, 0, 157, 3, 158, {0, 157, 3, 157}},
                {kSet, 0, 157, 500, 156, {0, 157, 500, 156}},
                {SIF_PAGE, 9, 9, 3, 9, {0, 157, 3, 156}},
                {SIF_POS, 9, 9, 9, 90, {0, 157, 3, 90}},
                {SIF_RANGE, 10, 80, 9, 9, {10, 80, 3, 80}},
                {SIF_POS, 0, 0, 0, -5, {10, 80, 3, 10}},
                {kSet, 0, -217, 3, 9, {0, 0, 3, 0}},
                {kSet, 5, 4, 3, 9, {5, 5, 3, 5}}};
    for (const auto& row : rows) {
        SCROLLINFO info = {28, row.mask, row.lowest, row.highest, row.page, row.position, 77};
        EXPECT_EQ(SetScrollInfo(page_, SB_VERT, &info, TRUE), row.kept[3]);
        info = {28, SIF_ALL, 0, 0, 0, 0, 0};
        EXPECT_NE(GetScrollInfo(page_, SB_VERT, &info), 0);
        EXPECT_EQ((Bounds{info.nMin, info.nMax, static_cast<int>(info.nPage), info.nPos}),
                  row.kept);
        EXPECT_EQ(info.nTrackPos, info.nPos);
        EXPECT_EQ(info.fMask, SIF_ALL);
        info = {28, SIF_POS, 71, 72, 73, 74, 75};
        GetScrollInfo(page_, SB_VERT, &info);
        EXPECT_EQ((Bounds{info.nMin, info.nMax, info.nPos, info.nTrackPos}),
                  (Bounds{71, 72, row.kept[3], 75}));
        EXPECT_EQ(GetScrollInfo(main_, SB_VERT, &info), 0) << "it has no bar";
        EXPECT_EQ(SetScrollInfo(main_, SB_VERT, &info, TRUE), 0);
    }
}

TEST_P(WindowSystemTest, PlacesCountFromTheParentAndBoundsFromTheScreen) {
    EXPECT_EQ(BoundsIn(GetWindowRect, main_), (Bounds{0, 26, 240, 320}));
    EXPECT_EQ(BoundsIn(GetWindowRect, page_), (Bounds{4, 30, 236, 269}));
    EXPECT_EQ(BoundsIn(GetClientRect, page_), (Bounds{0, 0, 219, 239}));
    SHMENUBARINFO bar = {36, main_, SHCMBF_HMENU, 7, nullptr, 0, 0, nullptr, 0};
    EXPECT_EQ(SHCreateMenuBar(&bar), 0) << "there is no such menu";
    bar.nToolBarId = kMenuResource;
    ASSERT_NE(SHCreateMenuBar(&bar), 0);
    EXPECT_EQ(BoundsIn(GetWindowRect, bar.hwndMB), (Bounds{0, 294, 240, 320}));
    const HWND shown = AddButton(1);
    const HWND hidden = AddButton(2);
    EXPECT_NE(ShowWindow(hidden, SW_HIDE), 0);
    EXPECT_EQ(ShowWindow(hidden, SW_HIDE), 0);
    const RECT clip = {0, 0, 219, 239};
    for (const int dy : {-300, 290}) {
        EXPECT_NE(ScrollWindowEx(page_, 0, dy, nullptr, &clip, nullptr, nullptr, 1), 0);
    }
    EXPECT_EQ(BoundsIn(GetWindowRect, shown), (Bounds{6, 40, 106, 58}));
    EXPECT_EQ(BoundsIn(GetWindowRect, hidden), (Bounds{6, 60, 106, 78}));
    EXPECT_NE(MoveWindow(main_, 10, 40, 200, 200, FALSE), 0);
    EXPECT_NE(MoveWindow(page_, 0, 0, 100, 100, FALSE), 0);
    EXPECT_EQ(BoundsIn(GetWindowRect, shown), (Bounds{12, 50, 112, 68}));
    EXPECT_EQ(ShowWindow(hidden, SW_SHOWNORMAL), 0);
    EXPECT_NE(ShowWindow(hidden, SW_SHOWNORMAL), 0);
}

TEST_P(WindowSystemTest, WhatWaitsForADestroyedWindowIsDropped) {
    const HWND outer = AddButton(1);
    Tap(outer, 1);
    EXPECT_TRUE(TakeReceived().empty()) << "received before the program asked for messages";
    Dispatch();
    EXPECT_EQ(TakeReceived(), (ReceivedMessages{{page_, WM_COMMAND, MAKELONG(1, BN_CLICKED),
                                                 reinterpret_cast<LPARAM>(outer)}}));
    Tap(outer, 1);
    EXPECT_NE(DestroyWindow(main_), 0);
    Dispatch();
    EXPECT_TRUE(TakeReceived().empty());
    for (const HWND child : {page_, outer}) {
        EXPECT_EQ(DestroyWindow(child), 0) << "it has not gone with its parents";
    }
}

TEST_P(WindowSystemTest, ATextReachesEveryClassAndAnEditBoxReportsIt) {
    const std::tuple<const WCHAR*, LRESULT, std::u16string, Codes> classes[] = {
        {TEXT("EDIT"), TRUE, u"abc", {EN_UPDATE, EN_CHANGE}},
        {TEXT("BUTTON"), TRUE, u"abc", {}},
        {TEXT("STATIC"), TRUE, u"abc", {}},
        {TEXT("COMBOBOX"), CB_ERR, u"entry", {}}};
    for (const auto& [name, result, text, codes] : classes) {
        const HWND control = Add(name, 0, {2, 2, 102, 20}, 5);
        if (result == CB_ERR) {
            Send(control, CB_ADDSTRING, 0, TEXT("entry"));
            Send(control, CB_SETCURSEL);
        }
        EXPECT_EQ(Send(control, WM_SETTEXT, 0, TEXT("abc")), result);
        EXPECT_EQ(TextOf(control), text);
        EXPECT_EQ(TakeCodes(), codes);
        DestroyWindow(control);
    }
    const HWND edit = Add(TEXT("EDIT"), 0, {2, 2, 102, 20}, 5, TEXT("abc"));
    const std::tuple<WPARAM, LRESULT, std::u16string> rows[] = {
        {0, 0, u"zz"}, {1, 0, u""}, {3, 2, u"ab"}, {4, 3, u"abc"}, {9, 3, u"abc"}};
    for (const auto& [room, copied, text] : rows) {
        WCHAR buffer[10] = TEXT("zz");
        EXPECT_EQ(Send(edit, WM_GETTEXT, room, buffer), copied);
        EXPECT_EQ(buffer, text) << room;
    }
    g_hook = [](const ReceivedMessage& received) -> LRESULT {
        return DestroyWindow(reinterpret_cast<HWND>(received.lParam));
    };
    EXPECT_EQ(Send(edit, WM_SETTEXT, 0, TEXT("x")), TRUE);
    EXPECT_EQ(TakeCodes(), Codes{EN_UPDATE}) << "a dead box was reported";
}

// Each row goes on from what those before it have left.
TEST_P(WindowSystemTest, EveryMessageToAControlHasItsResult) {
    const HWND box = Add(TEXT("BUTTON"), BS_AUTOCHECKBOX, {2, 2, 102, 20}, 1);
    const HWND push = AddButton(2);
    const HWND combo = Add(TEXT("COMBOBOX"), CBS_DROPDOWNLIST, {146, 80, 216, 152}, 3);
    const HWND slider = Add(TEXT("msctls_trackbar32"), TBS_AUTOTICKS, {2, 20, 212, 44}, 4);
    const HWND tabs = Add(TEXT("SysTabControl32"), TCS_BOTTOM, {0, 0, 200, 200}, 5);
    const HWND list = Add(TEXT("LISTBOX"), LBS_MULTIPLESEL, {2, 2, 212, 92}, 6);
    WCHAR text[] = TEXT("Text");
    const auto string = reinterpret_cast<LPARAM>(text);
    TCITEM item = {TCIF_TEXT, 0, 0, text, 0, -1, 0};
    const auto tab = reinterpret_cast<LPARAM>(&item);
    RECT area = {0, 0, 240, 268};
    // clang-format off
    const struct {
        HWND control; UINT message; int wParam; LPARAM lParam; LRESULT result;
    } rows[] = {
        {box, BM_GETCHECK, 0, 0, 0}, {box, BM_SETCHECK, 2, 0, 0}, {box, BM_GETCHECK, 0, 0, 1},
        {box, BM_SETCHECK, 0, 0, 0}, {box, BM_GETCHECK, 0, 0, 0},
        {push, BM_SETCHECK, 1, 0, 0}, {push, BM_GETCHECK, 0, 0, 0},
        {list, LB_GETSELCOUNT, 0, 0, 0},
        {combo, CB_ADDSTRING, 0, string, 0}, {combo, CB_ADDSTRING, 0, string, 1},
        {combo, CB_GETCURSEL, 0, 0, -1}, {combo, CB_SETCURSEL, 2, 0, -1},
        {combo, CB_GETCURSEL, 0, 0, -1}, {combo, CB_SETCURSEL, 1, 0, 1},
        {combo, CB_SETCURSEL, 2, 0, -1}, {combo, CB_SETCURSEL, -2, 0, -1},
        {combo, CB_GETCURSEL, 0, 0, 1}, {combo, CB_SETCURSEL, -1, 0, -1},
        {combo, CB_GETCURSEL, 0, 0, -1},
        {slider, TBM_GETPOS, 0, 0, 0}, {slider, TBM_SETPOS, 1, 200, 0},
        {slider, TBM_GETPOS, 0, 0, 100}, {slider, TBM_SETRANGE, 1, 0x20000, 0},
        {slider, TBM_GETPOS, 0, 0, 2}, {slider, TBM_SETPOS, 1, -1, 0},
        {slider, TBM_GETPOS, 0, 0, 0}, {slider, TBM_SETRANGE, 1, 0x20001, 0},
        {slider, TBM_GETPOS, 0, 0, 1},
        {tabs, TCM_GETCURSEL, 0, 0, -1}, {tabs, TCM_INSERTITEM, 5, tab, 0},
        {tabs, TCM_INSERTITEM, 9, tab, 1}, {tabs, TCM_INSERTITEM, -1, tab, -1},
        {tabs, TCM_INSERTITEM, 0, 0, -1}, {tabs, TCM_GETCURSEL, 0, 0, 0},
        {tabs, TCM_INSERTITEM, 0, tab, 0}, {tabs, TCM_GETCURSEL, 0, 0, 1},
        {tabs, TCM_INSERTITEM, 2, tab, 2}, {tabs, TCM_GETCURSEL, 0, 0, 1},
        {tabs, TCM_ADJUSTRECT, 0, reinterpret_cast<LPARAM>(&area), 0}};
    // clang-format on
    for (const auto& row : rows) {
        EXPECT_EQ(Send(row.control, row.message, static_cast<WPARAM>(row.wParam), row.lParam),
                  row.result)
            << &row - rows;
    }
    EXPECT_EQ((Bounds{area.left, area.top, area.right, area.bottom}), (Bounds{4, 4, 236, 243}));
    Dispatch();
    EXPECT_TRUE(TakeReceived().empty()) << "what the program does was reported to it";
}

}  // namespace
