// The rules of the window system, through the program's operations and a user's mouse and keys.

#include <QDialog>
#include <QLineEdit>
#include <QListWidget>
#include <QMenuBar>
#include <QScrollBar>
#include <QTabBar>
#include <QTimer>
#include <QWheelEvent>
#include <algorithm>
#include <array>
#include <csignal>
#include <string>

#include "core/window_system.h"
#include "tests/display_fixture.h"

namespace {

using Codes = std::vector<WORD>;

void Click(QWidget& widget, QPoint at = {}) {
    QTest::mouseClick(&widget, Qt::LeftButton, Qt::NoModifier, at);
}

std::u16string TextOf(HWND window) {
    WCHAR buffer[64] = {};
    SendMessageW(window, WM_GETTEXT, 64, reinterpret_cast<LPARAM>(buffer));
    return buffer;
}

RECT BoundsOf(HWND window) {
    RECT bounds{};
    EXPECT_NE(GetWindowRect(window, &bounds), 0);
    return bounds;
}

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
    const std::array places = {before - 3,         before + 3, before - page, before + page,
                               int{HIWORD(told.wParam)}, before,     info.nMin,     info.nMax};
    info.nPos = places.at(LOWORD(told.wParam));
    ScrollWindowEx(told.window, 0, before - info.nPos, nullptr, nullptr, nullptr, nullptr,
                   SW_SCROLLCHILDREN);
    SetScrollInfo(told.window, SB_VERT, &info, TRUE);
    return 1;
}

TEST_F(DisplayTest, EveryOperationFailsOnAHandleThatNamesNothing) {
    const HWND dead = Add(TEXT("EDIT"), WS_BORDER, {0, 0, 50, 18}, 7);
    EXPECT_NE(DestroyWindow(dead), 0);
    RECT rectangle = {1, 2, 3, 4};
    SCROLLINFO info = {28, SIF_ALL, 0, 0, 0, 0, 0};
    SHMENUBARINFO bar = {36, dead, SHCMBF_HMENU, kMenuResource, nullptr, 0, 0, nullptr, 0};
    const MSG message = {dead, WM_COMMAND, 0, 0, 0, {0, 0}};
    for (const HWND window : {HWND{nullptr}, dead, reinterpret_cast<HWND>(DWORD_PTR{0x7777})}) {
        EXPECT_EQ(DestroyWindow(window), 0);
        EXPECT_EQ(ShowWindow(window, SW_SHOWNORMAL), 0);
        EXPECT_EQ(UpdateWindow(window), 0);
        EXPECT_EQ(GetClientRect(window, &rectangle), 0);
        EXPECT_EQ(GetWindowRect(window, &rectangle), 0);
        EXPECT_EQ(MoveWindow(window, 0, 0, 1, 1, FALSE), 0);
        EXPECT_EQ(SetWindowTextW(window, TEXT("text")), 0);
        EXPECT_EQ(SendMessageW(window, WM_SETTEXT, 0, 0), 0);
        EXPECT_EQ(SendDlgItemMessageW(window, 7, WM_SETTEXT, 0, 0), 0);
        EXPECT_EQ(DefWindowProcW(window, WM_COMMAND, 0, 0), 0);
        EXPECT_EQ(GetScrollInfo(window, SB_VERT, &info), 0);
        EXPECT_EQ(SetScrollInfo(window, SB_VERT, &info, TRUE), 0);
        EXPECT_EQ(ScrollWindowEx(window, 0, 1, nullptr, nullptr, nullptr, nullptr, 1), 0);
        bar.hwndParent = window;
        EXPECT_EQ(SHCreateMenuBar(&bar), 0);
        const SHINITDLGINFO dialog = {SHIDIM_FLAGS, window, SHIDIF_SIZEDLG};
        EXPECT_EQ(SHInitDialog(&dialog), 0);
        EXPECT_EQ(CreateWindowExW(0, TEXT("EDIT"), TEXT(""), WS_CHILD, 0, 0, 9, 9, window, nullptr,
                                  nullptr, nullptr),
                  nullptr);
        SetFocus(window);
    }
    EXPECT_EQ(rectangle.bottom, 4);
    EXPECT_EQ(DispatchMessageW(&message), 0);
    EXPECT_NE(Add(TEXT("EDIT"), 0, {0, 0, 50, 18}, 7), dead);
}

TEST_F(DisplayTest, ClassesAreKnownOnceAndNotForgottenWhileAWindowLives) {
    WNDCLASS record{};
    record.lpszClassName = TEXT("Second");
    EXPECT_EQ(RegisterClassW(&record), 0);
    record.lpfnWndProc = DefWindowProcW;
    EXPECT_EQ(UnregisterClassW(TEXT("Second"), nullptr), 0);
    EXPECT_NE(RegisterClassW(&record), 0);
    EXPECT_EQ(RegisterClassW(&record), 0);
    EXPECT_EQ(UnregisterClassW(TEXT("Kept"), nullptr), 0);
    EXPECT_NE(UnregisterClassW(TEXT("second"), nullptr), 0);
    EXPECT_EQ(CreateWindowExW(0, TEXT("Second"), TEXT(""), WS_VISIBLE, 0, 0, 9, 9, nullptr, nullptr,
                              nullptr, nullptr),
              nullptr);
}

TEST_F(DisplayTest, WindowsStandWhereTheyWerePut) {
    const HWND list = Add(TEXT("LISTBOX"), 0x50b0100b, {2, 154, 212, 244}, 50012);
    const HWND combo = Add(TEXT("COMBOBOX"), CBS_DROPDOWNLIST, {146, 80, 216, 152}, 50027);
    const struct {
        HWND window;
        RECT bounds;
        LONG clientWidth;
    } rows[] = {
        {main_, {0, 26, 240, 320}, 240},
        {page_, {4, 30, 236, 269}, 219},
        {list, {6, 184, 216, 274}, 210},
        {combo, {150, 110, 220, 130}, 70},
    };
    for (const auto& row : rows) {
        const RECT bounds = BoundsOf(row.window);
        RECT client{};
        GetClientRect(row.window, &client);
        EXPECT_EQ(bounds.left, row.bounds.left);
        EXPECT_EQ(bounds.top, row.bounds.top);
        EXPECT_EQ(bounds.right, row.bounds.right);
        EXPECT_EQ(bounds.bottom, row.bounds.bottom);
        EXPECT_EQ(client.right, row.clientWidth);
    }
}

TEST_F(DisplayTest, ButtonsTellTheirParentOfClicksAlone) {
    const HWND box = Add(TEXT("BUTTON"), BS_AUTOCHECKBOX, {2, 2, 102, 20}, 5, TEXT("Box"));
    const HWND push = Add(TEXT("BUTTON"), BS_PUSHBUTTON, {2, 40, 102, 58}, 6, TEXT("Push"));
    Add(TEXT("BUTTON"), BS_AUTOCHECKBOX, {2, 60, 102, 78}, 0, TEXT("Nameless"));
    Send(box, BM_SETCHECK, 2);
    EXPECT_EQ(Send(box, BM_GETCHECK), 1);
    Send(push, BM_SETCHECK, 1);
    EXPECT_EQ(Send(push, BM_GETCHECK), 0);
    Dispatch();
    EXPECT_TRUE(TakeTold().empty());
    Click(Control(5));
    Click(*Control(5).parentWidget()->findChild<QWidget*>(QString()));
    Click(Control(6));
    EXPECT_EQ(Send(box, BM_GETCHECK), 0);
    EXPECT_TRUE(TakeTold().empty()) << "told before the program asked for messages";
    Dispatch();
    std::vector<Told> told = TakeTold();
    std::erase_if(told, [&](const Told& each) { return each.lParam == 0; });
    ASSERT_GE(told.size(), 2U);
    EXPECT_EQ(told.front().window, page_);
    EXPECT_EQ(told.front().wParam, MAKELONG(5, BN_CLICKED));
    EXPECT_EQ(told.front().lParam, reinterpret_cast<LPARAM>(box));
    EXPECT_EQ(told.back().wParam, MAKELONG(6, BN_CLICKED));
}

TEST_F(DisplayTest, EditBoxesTellOfEveryChange) {
    const HWND edit = Add(TEXT("EDIT"), WS_BORDER, {2, 2, 162, 20}, 5);
    Send(edit, WM_SETTEXT, 0, TEXT("ab"));
    EXPECT_EQ(CodesOf(TakeTold()), (Codes{EN_UPDATE, EN_CHANGE}));
    SetFocus(edit);
    QTest::keyClick(&Control(5), Qt::Key_End);
    QTest::keyClicks(&Control(5), QStringLiteral("c"));
    EXPECT_TRUE(TakeTold().empty());
    Dispatch();
    EXPECT_EQ(TextOf(edit), u"abc");
    Codes codes = CodesOf(TakeTold());
    std::erase(codes, EN_SETFOCUS);
    EXPECT_EQ(codes, (Codes{EN_UPDATE, EN_CHANGE}));
}

TEST_F(DisplayTest, TextsAreCopiedWithinTheirRoom) {
    const HWND edit = Add(TEXT("EDIT"), WS_BORDER, {2, 2, 162, 20}, 5, TEXT("abc"));
    const struct {
        WPARAM room;
        LRESULT copied;
        std::u16string text;
    } rows[] = {{0, 0, u"zz"}, {1, 0, u""}, {3, 2, u"ab"}, {4, 3, u"abc"}, {9, 3, u"abc"}};
    for (const auto& row : rows) {
        WCHAR buffer[10] = TEXT("zz");
        EXPECT_EQ(Send(edit, WM_GETTEXT, row.room, buffer), row.copied);
        EXPECT_EQ(buffer, row.text) << row.room;
    }
    const std::u16string longText(1500, u'x');
    Send(edit, WM_SETTEXT, 0, longText.c_str());
    std::array<WCHAR, 1024> buffer{};
    EXPECT_EQ(Send(edit, WM_GETTEXT, buffer.size(), buffer.data()), 1023);
}

TEST_F(DisplayTest, ComboBoxesKeepTheirSelection) {
    const HWND combo = Add(TEXT("COMBOBOX"), CBS_DROPDOWNLIST, {146, 80, 216, 152}, 5);
    EXPECT_EQ(Send(combo, CB_ADDSTRING, 0, TEXT("b")), 0);
    EXPECT_EQ(Send(combo, CB_ADDSTRING, 0, TEXT("a")), 1);
    EXPECT_EQ(Send(combo, CB_GETCURSEL), CB_ERR);
    EXPECT_EQ(Send(combo, CB_SETCURSEL, 0), 0);
    EXPECT_EQ(Send(combo, CB_SETCURSEL, 2), CB_ERR);
    EXPECT_EQ(Send(combo, CB_GETCURSEL), 0);
    Dispatch();
    EXPECT_TRUE(TakeTold().empty());
    SetFocus(combo);
    QTest::keyClick(&Control(5), Qt::Key_Down);
    Dispatch();
    EXPECT_EQ(Send(combo, CB_GETCURSEL), 1);
    EXPECT_EQ(CodesOf(TakeTold()), (Codes{CBN_SETFOCUS, CBN_SELENDOK, CBN_SELCHANGE}));
}

TEST_F(DisplayTest, ListBoxesSortWithoutRegardToCase) {
    const HWND list = Add(TEXT("LISTBOX"), 0x50b0100b, {2, 2, 212, 92}, 5);
    Send(list, LB_SETHORIZONTALEXTENT, 400);
    for (const WCHAR* const text : {TEXT("\\temp\\"), TEXT("\\Windows\\"), TEXT("\\Temp\\a\\"),
                                    TEXT("\\My\\"), TEXT("\\TEMP\\")}) {
        EXPECT_GE(Send(list, LB_ADDSTRING, 0, text), 0);
    }
    std::vector<std::u16string> entries;
    for (WPARAM index = 0; index < 5; ++index) {
        WCHAR text[32] = {};
        EXPECT_EQ(Send(list, LB_GETTEXT, index, text), Send(list, LB_GETTEXTLEN, index));
        entries.emplace_back(text);
    }
    EXPECT_EQ(entries, (std::vector<std::u16string>{u"\\My\\", u"\\TEMP\\", u"\\temp\\",
                                                    u"\\Temp\\a\\", u"\\Windows\\"}));
    WCHAR untouched[4] = TEXT("zz");
    EXPECT_EQ(Send(list, LB_GETTEXT, 5, untouched), LB_ERR);
    EXPECT_EQ(Send(list, LB_GETTEXT, static_cast<WPARAM>(-1), untouched), LB_ERR);
    EXPECT_STREQ(reinterpret_cast<const char*>(untouched), "z");
    auto& view = dynamic_cast<QListWidget&>(Control(5));
    EXPECT_TRUE(view.verticalScrollBar()->isVisible());
    EXPECT_TRUE(view.horizontalScrollBar()->isVisible());
    QCoreApplication::processEvents();
    EXPECT_EQ(view.horizontalScrollBar()->maximum(), 400 - view.viewport()->width());
    Send(list, LB_RESETCONTENT);
    EXPECT_EQ(Send(list, LB_GETCOUNT), 0);
    Send(list, LB_ADDSTRING, 0, TEXT("x"));
    QCoreApplication::processEvents();
    EXPECT_GT(view.horizontalScrollBar()->maximum(), 0) << "the extent is gone";
}

TEST_F(DisplayTest, TapsToggleEntriesOfAList) {
    const HWND list = Add(TEXT("LISTBOX"), 0x50b0100b, {2, 2, 212, 92}, 5);
    for (const WCHAR* const text : {TEXT("a"), TEXT("b"), TEXT("c")}) {
        Send(list, LB_ADDSTRING, 0, text);
    }
    auto& view = dynamic_cast<QListWidget&>(Control(5));
    for (const int row : {2, 0, 1, 1}) {
        Click(*view.viewport(), view.visualItemRect(view.item(row)).center());
    }
    LONG selected[3] = {-1, -1, -1};
    EXPECT_EQ(Send(list, LB_GETSELCOUNT), 2);
    EXPECT_EQ(Send(list, LB_GETSELITEMS, 1, selected), 1);
    EXPECT_EQ(selected[1], -1);
    EXPECT_EQ(Send(list, LB_GETSELITEMS, 3, selected), 2);
    EXPECT_EQ(selected[0], 0);
    EXPECT_EQ(selected[1], 2);
    Dispatch();
    Codes codes = CodesOf(TakeTold());
    EXPECT_EQ(std::count(codes.begin(), codes.end(), LBN_SELCHANGE), 4);
    Send(list, LB_SETSEL, 1, LPARAM{1});
    EXPECT_EQ(Send(list, LB_GETSELCOUNT), 3);
    Dispatch();
    EXPECT_TRUE(TakeTold().empty());
}

TEST_F(DisplayTest, SlidersStayInTheirRange) {
    const HWND slider = Add(TEXT("msctls_trackbar32"), TBS_AUTOTICKS, {2, 20, 212, 44}, 5);
    Send(slider, TBM_SETRANGE, 1, LPARAM{0x20000});
    for (const auto& [set, got] : {std::pair{2, 2}, {3, 2}, {-1, 0}, {1, 1}}) {
        Send(slider, TBM_SETPOS, 1, LPARAM{set});
        EXPECT_EQ(Send(slider, TBM_GETPOS), got);
    }
    Dispatch();
    EXPECT_TRUE(TakeTold().empty());
    QTest::keyClick(&Control(5), Qt::Key_Right);
    EXPECT_EQ(Send(slider, TBM_GETPOS), 2);
    Dispatch();
    const std::vector<Told> told = TakeTold();
    ASSERT_EQ(told.size(), 1U);
    EXPECT_EQ(told[0].message, WM_HSCROLL);
}

class TabTest : public DisplayTest {
  protected:
    TabTest() {
        tabs_ = CreateWindowExW(0, TEXT("SysTabControl32"), TEXT(""),
                                WS_CHILD | WS_VISIBLE | TCS_BOTTOM, 0, 0, 240, 268, main_, nullptr,
                                nullptr, nullptr);
        for (const char* const label : {"Clean Temp Files", "Pocket IE", "Registry",
                                        "System Folders", "Shortcuts", "Performance"}) {
            std::u16string text = QString::fromLatin1(label).toStdU16String();
            TCITEM item = {TCIF_TEXT, 0, 0, text.data(), 0, -1, 0};
            Send(tabs_, TCM_INSERTITEM, static_cast<WPARAM>(count_++), &item);
        }
    }

    static QTabBar& Row() { return *Host().findChild<QTabBar*>(); }

    static std::vector<UINT> CodesTold() {
        std::vector<UINT> codes;
        for (const Told& told : TakeTold()) {
            if (told.message == WM_NOTIFY) {
                codes.push_back(told.code);
            }
        }
        return codes;
    }

    HWND tabs_ = nullptr;
    int count_ = 0;
};

TEST_F(TabTest, ATapAsksBeforeAndTellsAfterTheChange) {
    static HWND tabs = tabs_;
    static std::vector<LRESULT> selections;
    g_hook = [](const Told& told) -> LRESULT {
        if (told.message == WM_NOTIFY) {
            selections.push_back(Send(tabs, TCM_GETCURSEL));
        }
        return 0;
    };
    EXPECT_EQ(Send(tabs_, TCM_GETCURSEL), 0);
    EXPECT_EQ(Send(tabs_, TCM_SETCURSEL, 2), 0);
    EXPECT_EQ(Send(tabs_, TCM_SETCURSEL, 6), -1);
    EXPECT_EQ(Send(tabs_, TCM_SETCURSEL, 0), 2);
    Click(Row(), Row().tabRect(1).center());
    EXPECT_EQ(Send(tabs_, TCM_GETCURSEL), 0) << "changed before it was told";
    Dispatch();
    EXPECT_EQ(CodesTold(), (std::vector<UINT>{TCN_SELCHANGING, TCN_SELCHANGE}));
    EXPECT_EQ(selections, (std::vector<LRESULT>{0, 1}));
    Click(Row(), Row().tabRect(1).center());
    Dispatch();
    EXPECT_TRUE(CodesTold().empty());
}

TEST_F(TabTest, ARefusedChangeIsNone) {
    g_hook = [](const Told& told) -> LRESULT { return told.code == TCN_SELCHANGING ? 1 : 0; };
    Click(Row(), Row().tabRect(1).center());
    Dispatch();
    EXPECT_EQ(CodesTold(), std::vector<UINT>{TCN_SELCHANGING});
    EXPECT_EQ(Send(tabs_, TCM_GETCURSEL), 0);
}

TEST_F(TabTest, TheChosenTabIsInViewWithItsWholeLabel) {
    for (int index = 1; index <= count_; ++index) {
        QTest::keyClick(&Host(), Qt::Key_Tab, Qt::ControlModifier);
        Dispatch();
        const auto chosen = static_cast<int>(Send(tabs_, TCM_GETCURSEL));
        ASSERT_EQ(chosen, index % count_);
        const QRect place = Row().tabRect(chosen);
        EXPECT_GE(place.left(), 0);
        EXPECT_LE(place.right(), 240 - 2 * 14);
        EXPECT_GE(place.width(), Row().fontMetrics().horizontalAdvance(Row().tabText(chosen)));
        EXPECT_EQ(CodesTold().size(), 2U);
    }
    QTest::keyClick(&Host(), Qt::Key_Backtab, Qt::ControlModifier | Qt::ShiftModifier);
    Dispatch();
    EXPECT_EQ(Send(tabs_, TCM_GETCURSEL), count_ - 1);
}

TEST_F(TabTest, InsertionsAndTheDisplayArea) {
    TCITEM item = {0, 0, 0, nullptr, 0, -1, 0};
    EXPECT_EQ(Send(tabs_, TCM_INSERTITEM, 99, &item), count_);
    EXPECT_EQ(Send(tabs_, TCM_INSERTITEM, static_cast<WPARAM>(-1), &item), -1);
    EXPECT_EQ(Send(tabs_, TCM_INSERTITEM, 0), -1);
    RECT area = {0, 0, 240, 268};
    Send(tabs_, TCM_ADJUSTRECT, 0, &area);
    EXPECT_EQ(area.left, 4);
    EXPECT_EQ(area.top, 4);
    EXPECT_EQ(area.right, 236);
    EXPECT_EQ(area.bottom, 243);
}

TEST_F(TabTest, AControlMayEndInItsOwnNotification) {
    g_hook = [](const Told& told) -> LRESULT {
        if (told.message == WM_NOTIFY) {
            DestroyWindow(reinterpret_cast<const NMHDR*>(told.lParam)->hwndFrom);
        }
        return 0;
    };
    Click(Row(), Row().tabRect(1).center());
    Dispatch();
    EXPECT_EQ(CodesTold(), std::vector<UINT>{TCN_SELCHANGING});
    EXPECT_EQ(ShowWindow(tabs_, SW_HIDE), 0);
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
    } rows[] = {{157, 0, false, SB_LINEDOWN},  {157, 154, false, SB_LINEDOWN},
                {157, 155, false, SB_BOTTOM},  {157, 3, true, SB_LINEUP},
                {157, 2, true, SB_TOP},        {-217, 0, false, -1},
                {-217, 0, true, -1}};
    for (const auto& row : rows) {
        SetRange(page_, row.highest, 3, row.position);
        QScrollBar& bar = PageBar();
        Click(bar, QPoint(6, row.up ? 4 : bar.height() - 4));
        Dispatch();
        const std::vector<Told> told = TakeTold();
        ASSERT_EQ(told.size(), row.code < 0 ? 0U : 1U) << row.position;
        if (row.code >= 0) {
            EXPECT_EQ(told[0].window, page_);
            EXPECT_EQ(told[0].message, WM_VSCROLL);
            EXPECT_EQ(LOWORD(told[0].wParam), row.code);
        }
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
        EXPECT_EQ(BoundsOf(shown).top, 30 + 300 - position);
        EXPECT_EQ(BoundsOf(hidden).top, 30 + 500 - position);
        EXPECT_EQ(bar.value(), position);
    }
    EXPECT_GT(PositionOf(page_), 0);
    SetRange(page_, 157, 3, 155);
    Click(bar, QPoint(6, bar.height() - 4));
    Dispatch();
    EXPECT_EQ(PositionOf(page_), 157);
}

TEST_F(DisplayTest, AWindowMayEndInItsOwnHandler) {
    Add(TEXT("BUTTON"), BS_PUSHBUTTON, {2, 40, 102, 58}, 6, TEXT("Push"));
    g_hook = [](const Told& told) -> LRESULT {
        if (LOWORD(told.wParam) == 6) {
            EXPECT_NE(DestroyWindow(told.window), 0);
        }
        return 1;
    };
    Click(Control(6));
    Click(Control(6));
    Click(*Control(6).parentWidget(), QPoint(200, 200));
    Dispatch();
    EXPECT_EQ(TakeTold().size(), 1U) << "a dead window was told";
    EXPECT_EQ(GetClientRect(page_, nullptr), 0);
}

TEST_F(DisplayTest, TheStylusOnABackgroundIsTold) {
    Add(TEXT("STATIC"), 0, {2, 2, 20, 20}, 5, TEXT("x"));
    Click(*Control(5).parentWidget(), QPoint(100, 90));
    Dispatch();
    const std::vector<Told> told = TakeTold();
    ASSERT_EQ(told.size(), 1U);
    EXPECT_EQ(told[0].window, page_);
    EXPECT_EQ(told[0].message, WM_LBUTTONUP);
    EXPECT_EQ(told[0].lParam, static_cast<LPARAM>(MAKELONG(100, 90)));
}

class BoxTest : public DisplayTest {
  protected:
    // Shows a box; `step` is what the user does once it is up.
    static int Show(UINT type, std::function<void(QDialog&)> step) {
        QTimer::singleShot(0, qApp, [step = std::move(step)] {
            auto* const box = dynamic_cast<QDialog*>(QApplication::activeModalWidget());
            ASSERT_NE(box, nullptr);
            step(*box);
        });
        return MessageBoxW(nullptr, TEXT("Text"), TEXT("Caption"), type);
    }

    static void Press(QDialog& box, int answer) {
        Click(*box.findChild<QWidget*>(QStringLiteral("answer%1").arg(answer)));
    }
};

TEST_F(BoxTest, BoxesAreAnsweredByTheirUser) {
    const struct {
        UINT type;
        int pressed;  // 0: the box is closed
        int answer;
    } rows[] = {{MB_OK, IDOK, IDOK},
                {MB_OK, 0, IDOK},
                {MB_YESNO, IDYES, IDYES},
                {MB_YESNO | MB_ICONEXCLAMATION, IDNO, IDNO},
                {MB_YESNO, 0, IDNO}};
    for (const auto& row : rows) {
        const int answer = Show(row.type, [&](QDialog& box) {
            EXPECT_EQ(box.windowTitle(), QStringLiteral("Caption"));
            row.pressed == 0 ? static_cast<void>(box.close()) : Press(box, row.pressed);
        });
        EXPECT_EQ(answer, row.answer) << row.type << ' ' << row.pressed;
    }
}

TEST_F(BoxTest, NothingIsDispatchedWhileABoxIsUp) {
    Add(TEXT("BUTTON"), BS_PUSHBUTTON, {2, 40, 102, 58}, 6, TEXT("Push"));
    Show(MB_OK, [](QDialog& box) {
        qobject_cast<QAbstractButton*>(&Control(6))->click();
        Press(box, IDOK);
    });
    EXPECT_TRUE(TakeTold().empty());
    Dispatch();
    EXPECT_EQ(TakeTold().size(), 1U);
}

TEST_F(BoxTest, ClosingTheWindowAnswersTheBoxAndEndsTheProgramOnce) {
    EXPECT_EQ(Show(MB_YESNO, [](QDialog& /*box*/) { Host().close(); }), IDNO);
    Host().close();
    Dispatch();
    const std::vector<Told> told = TakeTold();
    ASSERT_EQ(told.size(), 1U);
    EXPECT_EQ(told[0].window, main_);
    EXPECT_EQ(told[0].wParam, WPARAM{IDOK});
    EXPECT_TRUE(Host().isVisible());
}

TEST_F(BoxTest, ASignalDoesTheSame) {
    for (const int signal : {SIGTERM, SIGINT}) {
        EXPECT_EQ(Show(MB_OK, [signal](QDialog& /*box*/) { std::raise(signal); }), IDOK);
    }
    Dispatch();
    EXPECT_EQ(TakeTold().size(), 1U);
}

TEST_F(DisplayTest, TheCaptionBelongsToTheFrontWindow) {
    auto& ok = *Host().findChild<QWidget*>(QStringLiteral("captionOk"));
    const HWND box =
        CreateWindowExW(WS_EX_CAPTIONOKBTN, TEXT("Kept"), TEXT("Box"), WS_VISIBLE, CW_USEDEFAULT,
                        CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, nullptr, nullptr, nullptr,
                        nullptr);
    Click(ok);
    Dispatch();
    DestroyWindow(box);
    Click(ok);
    Dispatch();
    const std::vector<Told> told = TakeTold();
    ASSERT_EQ(told.size(), 2U);
    EXPECT_EQ(told[0].window, box);
    EXPECT_EQ(told[1].window, main_);
    EXPECT_EQ(told[1].wParam, WPARAM{IDOK});
}

TEST_F(DisplayTest, MenusOpenUpwardAndSendTheirCommands) {
    SHMENUBARINFO info = {36, main_, SHCMBF_HMENU, kMenuResource, nullptr, 0, 0, nullptr, 0};
    ASSERT_NE(SHCreateMenuBar(&info), 0);
    EXPECT_EQ(BoundsOf(info.hwndMB).top, 294);
    EXPECT_EQ(BoundsOf(info.hwndMB).bottom, 320);
    QTest::keyClick(&Host(), Qt::Key_F10);
    QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Right);
    QWidget* const popup = QApplication::activePopupWidget();
    ASSERT_NE(popup, nullptr);
    EXPECT_EQ(popup->y() + popup->height(), Host().mapToGlobal(QPoint(0, 294)).y());
    QTest::keyClick(popup, Qt::Key_Down);
    QTest::keyClick(popup, Qt::Key_Return);
    Dispatch();
    const std::vector<Told> told = TakeTold();
    ASSERT_EQ(told.size(), 1U);
    EXPECT_EQ(told[0].window, main_);
    EXPECT_EQ(told[0].wParam, WPARAM{kCommandApplyDeferRestart});
    EXPECT_EQ(told[0].lParam, 0);
    info.nToolBarId = 7;
    EXPECT_EQ(SHCreateMenuBar(&info), 0);
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
    EXPECT_EQ(BoundsOf(last).bottom, 269);
    TakeTold();
    QTest::keyClick(&Control(6), Qt::Key_Return);
    QTest::keyClick(&Control(6), Qt::Key_Space);
    QTest::keyClick(&Control(6), Qt::Key_Escape);
    Dispatch();
    EXPECT_EQ(CodesOf(TakeTold()), (Codes{BN_CLICKED, BN_CLICKED}));
    QTest::keyClick(&Control(5), Qt::Key_Return);
    QTest::keyClick(&Control(5), Qt::Key_Escape);
    Dispatch();
    EXPECT_TRUE(TakeTold().empty());
}

TEST_F(DisplayTest, ALabelNamesTheControlBehindIt) {
    Add(TEXT("STATIC"), 0, {2, 2, 100, 20}, 4, TEXT("Search Files"));
    Add(TEXT("BUTTON"), BS_PUSHBUTTON, {104, 2, 164, 20}, 5, TEXT("Refresh"));
    Add(TEXT("LISTBOX"), 0x50b0100b, {2, 22, 212, 112}, 6);
    EXPECT_EQ(Control(6).accessibleName(), QStringLiteral("Search Files"));
}

class TreeTest : public DisplayTest {
  protected:
    TreeTest() {
        tree_ = Add(TEXT("SysTreeView32"), WS_BORDER | TVS_HASBUTTONS | TVS_HASLINES,
                    {0, 0, 200, 200}, 5);
        s_tree = tree_;
        s_asked = 0;
    }

    static HTREEITEM Insert(HTREEITEM parent, const char16_t* text, int children) {
        std::u16string copy = text;
        TVINSERTSTRUCT record{};
        record.hParent = parent;
        record.hInsertAfter = TVI_SORT;
        record.item.mask = TVIF_TEXT | TVIF_PARAM | TVIF_CHILDREN;
        record.item.pszText = copy.data();
        record.item.cChildren = children;
        record.item.lParam = -1;
        return reinterpret_cast<HTREEITEM>(Send(s_tree, TVM_INSERTITEM, 0, &record));
    }

    // Gives every item that is asked about one child.
    static LRESULT Answer(const Told& told) {
        if (told.message == WM_NOTIFY && told.code == TVN_GETDISPINFO) {
            auto& question = *reinterpret_cast<NMTVDISPINFO*>(told.lParam);
            ++s_asked;
            Insert(question.item.hItem, u"child", I_CHILDRENCALLBACK);
            question.item.cChildren = 1;
            Send(s_tree, TVM_SETITEM, 0, &question.item);
        }
        return 1;
    }

    HWND tree_ = nullptr;
    static HWND s_tree;
    static int s_asked;
};

HWND TreeTest::s_tree = nullptr;
int TreeTest::s_asked = 0;

TEST_F(TreeTest, ItemsAreSortedFoundAndRead) {
    const HTREEITEM root = Insert(TVI_ROOT, u"\\", 1);
    const HTREEITEM windows = Insert(root, u"Windows", 0);
    const HTREEITEM temp = Insert(root, u"temp", 0);
    EXPECT_EQ(Send(tree_, TVM_GETNEXTITEM, TVGN_PARENT, temp), reinterpret_cast<LRESULT>(root));
    EXPECT_EQ(Send(tree_, TVM_GETNEXTITEM, TVGN_PARENT, root), 0);
    EXPECT_EQ(Send(tree_, TVM_GETNEXTITEM, TVGN_CARET), 0);
    WCHAR text[16] = {};
    TVITEM item{};
    item.mask = TVIF_TEXT | TVIF_PARAM;
    item.hItem = windows;
    item.pszText = text;
    item.cchTextMax = 16;
    EXPECT_NE(Send(tree_, TVM_GETITEM, 0, &item), 0);
    EXPECT_EQ(std::u16string(text), u"Windows");
    EXPECT_EQ(item.lParam, -1);
    item.hItem = nullptr;
    EXPECT_EQ(Send(tree_, TVM_GETITEM, 0, &item), 0);
    EXPECT_EQ(Insert(reinterpret_cast<HTREEITEM>(DWORD_PTR{99}), u"x", 0), nullptr);
}

TEST_F(TreeTest, OnlyRowsInViewAreAskedAbout) {
    g_hook = Answer;
    const HTREEITEM root = Insert(TVI_ROOT, u"\\", 1);
    for (int index = 0; index < 100; ++index) {
        Insert(root, QStringLiteral("%1").arg(index).toStdU16String().c_str(), I_CHILDRENCALLBACK);
    }
    EXPECT_EQ(s_asked, 0);
    Dispatch();
    EXPECT_EQ(s_asked, 0) << "asked about rows below a closed one";
    EXPECT_EQ(Send(tree_, TVM_EXPAND, TVE_EXPAND, root), 1);
    EXPECT_GT(s_asked, 5);
    EXPECT_LT(s_asked, 20);
    const int asked = s_asked;
    Control(5).grab();
    Dispatch();
    EXPECT_EQ(s_asked, asked);
}

}  // namespace
