// What the controls answer, and what they tell of their user.

#include <QAbstractButton>
#include <QClipboard>
#include <QListWidget>
#include <QScrollBar>
#include <QWheelEvent>
#include <string>

#include "core/window_system.h"
#include "tests/display_fixture.h"

namespace {

std::u16string TextOf(HWND window) {
    WCHAR buffer[1100] = {};
    SendMessageW(window, WM_GETTEXT, 1100, reinterpret_cast<LPARAM>(buffer));
    return buffer;
}

TEST_F(DisplayTest, ButtonsTellTheirParentOfClicksAlone) {
    const HWND box = Add(TEXT("BUTTON"), BS_AUTOCHECKBOX, {2, 2, 102, 20}, 5, TEXT("Box"));
    const HWND push = Add(TEXT("BUTTON"), BS_PUSHBUTTON, {2, 40, 102, 58}, 6, TEXT("Push"));
    const HWND nameless = Add(TEXT("BUTTON"), BS_AUTOCHECKBOX, {2, 60, 102, 78}, 0);
    Send(box, BM_SETCHECK, 2);
    EXPECT_EQ(Send(box, BM_GETCHECK), 1);
    Send(push, BM_SETCHECK, 1);
    EXPECT_EQ(Send(push, BM_GETCHECK), 0);
    Dispatch();
    EXPECT_TRUE(TakeTold().empty());
    Click(Control(5));
    Click(*Control(5).parentWidget()->childAt(10, 70));
    EXPECT_EQ(Send(nameless, BM_GETCHECK), 1);
    Click(Control(6));
    EXPECT_EQ(Send(box, BM_GETCHECK), 0);
    EXPECT_TRUE(TakeTold().empty()) << "told before the program asked for messages";
    Dispatch();
    EXPECT_EQ(
        TakeTold(),
        (AllTold{{page_, WM_COMMAND, MAKELONG(5, BN_CLICKED), reinterpret_cast<LPARAM>(box)},
                 {page_, WM_COMMAND, MAKELONG(6, BN_CLICKED), reinterpret_cast<LPARAM>(push)}}));
}

TEST_F(DisplayTest, ButtonsTakeTheKeysThatPushThem) {
    const HWND box = Add(TEXT("BUTTON"), BS_AUTOCHECKBOX, {2, 2, 102, 20}, 5, TEXT("Box"));
    Add(TEXT("BUTTON"), BS_PUSHBUTTON, {2, 40, 102, 58}, 6, TEXT("Push"));
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Space, Qt::Key_Escape}) {
        QTest::keyClick(&Control(6), key);
    }
    Dispatch();
    EXPECT_EQ(TakeCodes(), (Codes{BN_CLICKED, BN_CLICKED}));
    SetFocus(box);
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Escape, Qt::Key_Down, Qt::Key_Right}) {
        QTest::keyClick(&Control(5), key);
        EXPECT_TRUE(Control(5).hasFocus());
    }
    ShowWindow(box, SW_HIDE);
    EXPECT_FALSE(Control(6).hasFocus()) << "the keyboard has gone on to a neighbour";
    Dispatch();
    EXPECT_TRUE(TakeTold().empty());
}

TEST_F(DisplayTest, EditBoxesTellOfEveryChange) {
    const HWND edit = Add(TEXT("EDIT"), WS_BORDER, {2, 2, 162, 20}, 5);
    for (const std::u16string text : {u"\xFEFF\\T", u"\xFFFE", u"\xD800", u"abc"}) {
        Send(edit, WM_SETTEXT, 0, text.c_str());
        EXPECT_EQ(TextOf(edit), text);
        EXPECT_EQ(TakeCodes(), (Codes{EN_UPDATE, EN_CHANGE}));
    }
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
    SetFocus(edit);
    QTest::keyClick(&Control(5), Qt::Key_End);
    QTest::keyClicks(&Control(5), QStringLiteral("d"));
    EXPECT_TRUE(TakeTold().empty());
    Dispatch();
    EXPECT_EQ(TextOf(edit), u"abcd");
    EXPECT_EQ(TakeCodes(), (Codes{EN_SETFOCUS, EN_UPDATE, EN_CHANGE}));
}

// What is pasted is what is shown; nothing pasted changes nothing.
TEST_F(DisplayTest, TextsGoThroughTheClipboard) {
    const HWND edit = Add(TEXT("EDIT"), WS_BORDER, {2, 2, 162, 20}, 5, TEXT("\\Temp"));
    const auto press = [](Qt::Key key) { QTest::keyClick(&Control(5), key, Qt::ControlModifier); };
    for (const Qt::Key key :
         {Qt::Key_A, Qt::Key_C, Qt::Key_V, Qt::Key_V, Qt::Key_A, Qt::Key_X, Qt::Key_V, Qt::Key_V}) {
        press(key);
    }
    EXPECT_EQ(TextOf(edit), u"\\Temp\\Temp\\Temp\\Temp");
    const std::pair<QString, std::u16string> pasted[] = {
        {QString::fromUtf16(u"\\\0Temp\\\r\n\t", 9), u"\\Temp\\"},
        {QString(), u"\\Temp\\"},
        {QString(2000, 'x'), std::u16string(1023, u'x')}};
    for (const auto& [text, shown] : pasted) {
        QGuiApplication::clipboard()->setText(text);
        press(Qt::Key_A);
        press(Qt::Key_V);
        EXPECT_EQ(TextOf(edit), shown);
    }
}

TEST_F(DisplayTest, ComboBoxesKeepTheirSelection) {
    const HWND combo = Add(TEXT("COMBOBOX"), CBS_DROPDOWNLIST, {146, 80, 216, 152}, 5);
    EXPECT_EQ(Send(combo, CB_ADDSTRING, 0, TEXT("b")), 0);
    EXPECT_EQ(Send(combo, CB_ADDSTRING, 0, TEXT("a")), 1);
    EXPECT_EQ(Send(combo, CB_GETCURSEL), CB_ERR);
    const struct {
        LPARAM set;
        LRESULT result;
        LRESULT selected;
        std::u16string text;
    } rows[] = {{2, CB_ERR, CB_ERR, u""}, {1, 1, 1, u"a"},           {2, CB_ERR, 1, u"a"},
                {-2, CB_ERR, 1, u"a"},    {-1, CB_ERR, CB_ERR, u""}, {0, 0, 0, u"b"}};
    for (const auto& row : rows) {
        EXPECT_EQ(Send(combo, CB_SETCURSEL, static_cast<WPARAM>(row.set)), row.result);
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
    EXPECT_EQ(TakeCodes(), (Codes{CBN_SETFOCUS, CBN_SELENDOK, CBN_SELCHANGE}));
}

class ListTest : public DisplayTest {
  protected:
    void Fill(std::initializer_list<const WCHAR*> texts) {
        for (const WCHAR* const text : texts) {
            EXPECT_GE(Send(list_, LB_ADDSTRING, 0, text), 0);
        }
        QCoreApplication::processEvents();
    }

    HWND list_ = Add(TEXT("LISTBOX"), 0x50b0100b, {2, 2, 212, 92}, 5);
    QListWidget& view_ = dynamic_cast<QListWidget&>(Control(5));
};

TEST_F(ListTest, EntriesAreSortedWithoutRegardToCase) {
    Send(list_, LB_SETHORIZONTALEXTENT, 400);
    Fill({u"\\temp\\", u"\\Windows\\", u"\\Temp\\a\\", u"\\My\\", u"\\TEMP\\"});
    WPARAM index = 0;
    for (const std::u16string entry :
         {u"\\My\\", u"\\TEMP\\", u"\\temp\\", u"\\Temp\\a\\", u"\\Windows\\"}) {
        WCHAR text[32] = {};
        EXPECT_EQ(Send(list_, LB_GETTEXTLEN, index), static_cast<LRESULT>(entry.size()));
        EXPECT_EQ(Send(list_, LB_GETTEXT, index++, text), static_cast<LRESULT>(entry.size()));
        EXPECT_EQ(text, entry);
    }
    WCHAR untouched[4] = TEXT("zz");
    EXPECT_EQ(Send(list_, LB_GETTEXT, 5, untouched), LB_ERR);
    EXPECT_EQ(Send(list_, LB_GETTEXT, static_cast<WPARAM>(-1), untouched), LB_ERR);
    EXPECT_EQ(std::u16string(untouched), u"zz");
    EXPECT_TRUE(view_.verticalScrollBar()->isVisible());
    EXPECT_TRUE(view_.horizontalScrollBar()->isVisible());
    EXPECT_EQ(view_.horizontalScrollBar()->maximum(), 400 - view_.viewport()->width());
    Send(list_, LB_RESETCONTENT);
    EXPECT_EQ(Send(list_, LB_GETCOUNT), 0);
    Fill({u"x"});
    EXPECT_GT(view_.horizontalScrollBar()->maximum(), 0) << "the extent is gone";
}

TEST_F(ListTest, TapsToggleEntries) {
    Fill({u"a", u"b", u"c"});
    for (const int row : {2, 0, 1, 1}) {
        Click(*view_.viewport(), view_.visualItemRect(view_.item(row)).center());
    }
    std::vector<LONG> selected = {-1, -1, -1};
    EXPECT_EQ(Send(list_, LB_GETSELCOUNT), 2);
    EXPECT_EQ(Send(list_, LB_GETSELITEMS, 1, selected.data()), 1);
    EXPECT_EQ(selected, (std::vector<LONG>{0, -1, -1}));
    EXPECT_EQ(Send(list_, LB_GETSELITEMS, 3, selected.data()), 2);
    EXPECT_EQ(selected, (std::vector<LONG>{0, 2, -1}));
    Dispatch();
    EXPECT_EQ(TakeCodes(),
              (Codes{LBN_SETFOCUS, LBN_SELCHANGE, LBN_SELCHANGE, LBN_SELCHANGE, LBN_SELCHANGE}));
    Send(list_, LB_SETSEL, 1, LPARAM{1});
    EXPECT_EQ(Send(list_, LB_GETSELCOUNT), 3);
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
