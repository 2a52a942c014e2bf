// What the controls answer, and what they tell of their user.

#include <QAbstractButton>
#include <QClipboard>
#include <QListWidget>
#include <QScrollBar>
#include <QWheelEvent>
#include <algorithm>
#include <string>

#include "core/window_system.h"
#include "tests/display_fixture.h"

namespace {

using Codes = std::vector<WORD>;

std::u16string TextOf(HWND window) {
    WCHAR buffer[1100] = {};
    SendMessageW(window, WM_GETTEXT, 1100, reinterpret_cast<LPARAM>(buffer));
    return buffer;
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
    for (auto* const button : Host().findChildren<QAbstractButton*>()) {
        if (button->text() == QStringLiteral("Nameless")) {
            Click(*button);
        }
    }
    Click(Control(6));
    EXPECT_EQ(Send(box, BM_GETCHECK), 0);
    EXPECT_TRUE(TakeTold().empty()) << "told before the program asked for messages";
    Dispatch();
    EXPECT_EQ(
        TakeTold(),
        (AllTold{{page_, WM_COMMAND, MAKELONG(5, BN_CLICKED), reinterpret_cast<LPARAM>(box)},
                 {page_, WM_COMMAND, MAKELONG(6, BN_CLICKED), reinterpret_cast<LPARAM>(push)}}));
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

TEST_F(DisplayTest, TextsGoThroughTheClipboard) {
    Add(TEXT("EDIT"), WS_BORDER, {2, 2, 162, 20}, 5, TEXT("\\Temp"));
    const HWND other = Add(TEXT("EDIT"), WS_BORDER, {2, 22, 162, 40}, 6, TEXT("x"));
    for (const auto& [id, key] : {std::pair{5, Qt::Key_A},
                                  {5, Qt::Key_C},
                                  {6, Qt::Key_End},
                                  {6, Qt::Key_V},
                                  {6, Qt::Key_A},
                                  {6, Qt::Key_X},
                                  {6, Qt::Key_V},
                                  {6, Qt::Key_V}}) {
        const bool plain = key == Qt::Key_End;
        QTest::keyClick(&Control(id), key, plain ? Qt::NoModifier : Qt::ControlModifier);
    }
    EXPECT_EQ(TextOf(other), u"x\\Tempx\\Temp");
    // What is pasted is what is shown; nothing pasted changes nothing.
    const std::pair<QString, std::u16string> pasted[] = {
        {QString::fromUtf16(u"\\\0Temp\\\r\n\t", 9), u"\\Temp\\"},
        {QString(), u"\\Temp\\"},
        {QString(2000, 'x'), std::u16string(1023, u'x')}};
    for (const auto& [text, shown] : pasted) {
        QGuiApplication::clipboard()->setText(text);
        QTest::keyClick(&Control(6), Qt::Key_A, Qt::ControlModifier);
        QTest::keyClick(&Control(6), Qt::Key_V, Qt::ControlModifier);
        EXPECT_EQ(TextOf(other), shown);
    }
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
    for (const std::u16string text : {u"\xFEFF\\T", u"\xFFFE", u"\xD800"}) {
        Send(edit, WM_SETTEXT, 0, text.c_str());
        EXPECT_EQ(TextOf(edit), text);
    }
}

TEST_F(DisplayTest, ComboBoxesKeepTheirSelection) {
    const HWND combo = Add(TEXT("COMBOBOX"), CBS_DROPDOWNLIST, {146, 80, 216, 152}, 5);
    EXPECT_EQ(Send(combo, CB_ADDSTRING, 0, TEXT("b")), 0);
    EXPECT_EQ(Send(combo, CB_ADDSTRING, 0, TEXT("a")), 1);
    const struct {
        WPARAM set;
        LRESULT result;
        LRESULT selected;
        std::u16string text;
    } rows[] = {{static_cast<WPARAM>(-1), CB_ERR, CB_ERR, u""},
                {1, 1, 1, u"a"},
                {2, CB_ERR, 1, u"a"},
                {static_cast<WPARAM>(-2), CB_ERR, 1, u"a"},
                {static_cast<WPARAM>(-1), CB_ERR, CB_ERR, u""},
                {0, 0, 0, u"b"}};
    for (const auto& row : rows) {
        EXPECT_EQ(Send(combo, CB_SETCURSEL, row.set), row.result);
        EXPECT_EQ(Send(combo, WM_SETTEXT, 0, TEXT("x")), CB_ERR);
        EXPECT_EQ(Send(combo, CB_GETCURSEL), row.selected);
        EXPECT_EQ(TextOf(combo), row.text);
    }
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
    QWheelEvent wheel(QPointF(5, 5), {}, {}, {0, 120}, Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(&Control(5), &wheel);
    EXPECT_EQ(Send(slider, TBM_GETPOS), 1) << "the wheel is the page's";
    QTest::keyClick(&Control(5), Qt::Key_Right);
    EXPECT_EQ(Send(slider, TBM_GETPOS), 2);
    Dispatch();
    const AllTold told = TakeTold();
    ASSERT_EQ(told.size(), 1U);
    EXPECT_EQ(told[0].message, WM_HSCROLL);
}

TEST_F(DisplayTest, ALabelNamesTheControlBehindIt) {
    Add(TEXT("STATIC"), 0, {2, 2, 100, 20}, 4, TEXT("Search Files"));
    Add(TEXT("BUTTON"), BS_PUSHBUTTON, {104, 2, 164, 20}, 5, TEXT("Refresh"));
    Add(TEXT("BUTTON"), BS_AUTOCHECKBOX, {2, 22, 52, 40}, 6, TEXT("*."));
    Add(TEXT("EDIT"), WS_BORDER, {58, 22, 90, 40}, 7);
    Add(TEXT("LISTBOX"), 0x50b0100b, {2, 42, 212, 132}, 8);
    EXPECT_EQ(Control(7).accessibleName(), QStringLiteral("*."));
    EXPECT_EQ(Control(8).accessibleName(), QStringLiteral("Search Files"));
}

}  // namespace
