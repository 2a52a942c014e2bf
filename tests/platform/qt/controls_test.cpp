// What the controls answer, and what they tell of their user.

#include <QAbstractButton>
#include <QClipboard>
#include <QLineEdit>
#include <QListView>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTabBar>
#include <QToolButton>
#include <QTreeWidget>
#include <QWheelEvent>
#include <algorithm>
#include <array>
#include <string>

#include "core/window_operations.h"
#include "tests/support/display_fixture.h"

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
        RepeatKey(Control(6), key);
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
    QListView& view_ = dynamic_cast<QListView&>(Control(5));
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
        Click(*view_.viewport(), view_.visualRect(view_.model()->index(row, 0)).center());
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

TEST_F(ListTest, ManyEntriesFindTheirPlacesAtOnce) {
    Fill({u"m", u"b", u"x"});
    Send(list_, LB_SETSEL, 1, LPARAM{1});
    QSignalSpy insertions(view_.model(), &QAbstractItemModel::rowsInserted);
    for (int number = 1000; number > 0; --number) {
        Send(list_, LB_ADDSTRING, 0, QString::number(number).toStdU16String().c_str());
    }
    LONG selected = -1;
    EXPECT_EQ(Send(list_, LB_GETSELITEMS, 1, &selected), 1);
    EXPECT_EQ(selected, 1001) << "the selection has not gone with its entry";
    EXPECT_EQ(insertions.size(), 1);
}

TEST_F(ListTest, TheBlankAloneSelectsByKey) {
    Fill({u"a", u"b", u"c", u"d"});
    SetFocus(list_);
    const std::pair<Qt::Key, LRESULT> rows[] = {
        {Qt::Key_Space, 1}, {Qt::Key_Down, 1}, {Qt::Key_Down, 1}, {Qt::Key_Space, 2},
        {Qt::Key_D, 2},     {Qt::Key_Home, 2}, {Qt::Key_Space, 1}};
    for (const auto& [key, selected] : rows) {
        QTest::keyClick(&view_, key);
        RepeatKey(view_, Qt::Key_Space);
        EXPECT_EQ(Send(list_, LB_GETSELCOUNT), selected) << key;
    }
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

class TabTest : public DisplayTest {
  protected:
    TabTest() {
        tabs_ = CreateWindowExW(0, TEXT("SysTabControl32"), TEXT(""),
                                WS_CHILD | WS_VISIBLE | TCS_BOTTOM, 0, 0, 240, 268, main_, nullptr,
                                nullptr, nullptr);
        for (std::u16string text : {u"Clean Temp Files", u"Pocket IE", u"Registry",
                                    u"System Folders", u"Shortcuts", u"Performance"}) {
            TCITEM item = {TCIF_TEXT, 0, 0, text.data(), 0, -1, 0};
            EXPECT_EQ(Send(tabs_, TCM_INSERTITEM, static_cast<WPARAM>(count_), &item), count_);
            ++count_;
        }
    }

    static QTabBar& Row() { return *Host().findChild<QTabBar*>(); }
    static void Tap(int index) { Click(Row(), Row().tabRect(index).center()); }

    HWND tabs_ = nullptr;
    int count_ = 0;
};

TEST_F(TabTest, ATapAsksBeforeAndTellsAfterTheChange) {
    static HWND tabs = tabs_;
    static std::vector<LRESULT> selections;
    g_hook = [](const Told& told) -> LRESULT {
        selections.push_back(Send(tabs, TCM_GETCURSEL));
        return told.code == TCN_SELCHANGING && selections.size() == 1 ? 1 : 0;
    };
    EXPECT_EQ(Send(tabs_, TCM_GETCURSEL), 0);
    EXPECT_EQ(Send(tabs_, TCM_SETCURSEL, 2), 0);
    EXPECT_EQ(Send(tabs_, TCM_SETCURSEL, 6), -1);
    EXPECT_EQ(Send(tabs_, TCM_SETCURSEL, 0), 2);
    const std::pair<Codes, LRESULT> taps[] = {
        {{TCN_SELCHANGING}, 0}, {{TCN_SELCHANGING, TCN_SELCHANGE}, 1}, {{}, 1}};
    for (const auto& [codes, selected] : taps) {
        Tap(1);
        EXPECT_EQ(Send(tabs_, TCM_GETCURSEL), codes.empty() ? 1 : 0)
            << "changed before it was told";
        Dispatch();
        EXPECT_EQ(TakeCodes(), codes);
        EXPECT_EQ(Send(tabs_, TCM_GETCURSEL), selected);
    }
    EXPECT_EQ(selections, (std::vector<LRESULT>{0, 0, 1}));
}

// The tabs in view. None is cut, and each has room for its label.
std::vector<int> TabsInView(const QTabBar& row) {
    const QRect view = row.parentWidget()->rect();
    std::vector<int> shown;
    for (int index = 0; index < row.count(); ++index) {
        const QRect place = row.tabRect(index).translated(row.pos());
        EXPECT_EQ(view.intersects(place), view.contains(place));
        EXPECT_GE(place.width(), row.fontMetrics().horizontalAdvance(row.tabText(index)));
        if (view.intersects(place)) {
            shown.push_back(index);
        }
    }
    return shown;
}

TEST_F(TabTest, WholeTabsAreInViewAndTheChosenOneAmongThem) {
    for (int index = 1; index <= count_; ++index) {
        QTest::keyClick(&Host(), Qt::Key_Tab, Qt::ControlModifier);
        Dispatch();
        const auto chosen = static_cast<int>(Send(tabs_, TCM_GETCURSEL));
        ASSERT_EQ(chosen, index % count_);
        const std::vector<int> shown = TabsInView(Row());
        EXPECT_EQ(std::ranges::count(shown, chosen), 1) << chosen;
        EXPECT_EQ(TakeCodes().size(), 2U);
    }
    QTest::keyClick(&Host(), Qt::Key_Backtab, Qt::ControlModifier | Qt::ShiftModifier);
    Dispatch();
    EXPECT_EQ(Send(tabs_, TCM_GETCURSEL), count_ - 1);
}

TEST_F(TabTest, ArrowsMoveTheRowAlone) {
    const auto arrows = Row().parentWidget()->parentWidget()->findChildren<QToolButton*>(
        QString(), Qt::FindDirectChildrenOnly);
    ASSERT_EQ(arrows.size(), 2);
    EXPECT_EQ(TabsInView(Row()).front(), 0);
    for (int tap = 0; tap < count_; ++tap) {
        Click(*arrows[1]);
    }
    EXPECT_EQ(TabsInView(Row()).back(), count_ - 1);
    EXPECT_FALSE(arrows[1]->isEnabled());
    Click(*arrows[0]);
    EXPECT_EQ(TabsInView(Row()).back(), count_ - 2);
    Dispatch();
    EXPECT_TRUE(TakeCodes().empty());
}

TEST_F(TabTest, InsertionsAndTheDisplayArea) {
    TCITEM item = {0, 0, 0, nullptr, 0, -1, 0};
    EXPECT_EQ(Send(tabs_, TCM_INSERTITEM, 99, &item), count_);
    EXPECT_EQ(Send(tabs_, TCM_INSERTITEM, static_cast<WPARAM>(-1), &item), -1);
    EXPECT_EQ(Send(tabs_, TCM_INSERTITEM, 0), -1);
    RECT area = {0, 0, 240, 268};
    Send(tabs_, TCM_ADJUSTRECT, 0, &area);
    EXPECT_EQ((std::array{area.left, area.top, area.right, area.bottom}),
              (std::array{4, 4, 236, 243}));
}

TEST_F(TabTest, AControlMayEndInItsOwnNotification) {
    g_hook = [](const Told& told) -> LRESULT {
        DestroyWindow(reinterpret_cast<const NMHDR*>(told.lParam)->hwndFrom);
        return 0;
    };
    Tap(1);
    Dispatch();
    EXPECT_EQ(TakeCodes(), Codes{TCN_SELCHANGING});
    EXPECT_EQ(ShowWindow(tabs_, SW_HIDE), 0);
}

class TreeTest : public DisplayTest {
  protected:
    TreeTest() {
        s_tree = Add(TEXT("SysTreeView32"), WS_BORDER | TVS_HASBUTTONS | TVS_HASLINES,
                     {0, 0, 200, 200}, 5);
        s_asked = 0;
    }

    static HTREEITEM Insert(HTREEITEM parent, std::u16string text, int children, int image = 0) {
        TVINSERTSTRUCT record = {parent, TVI_SORT, {}};
        record.item = {TVIF_TEXT | TVIF_PARAM | TVIF_CHILDREN | TVIF_IMAGE | TVIF_SELECTEDIMAGE,
                       nullptr,
                       0,
                       0,
                       text.data(),
                       0,
                       image,
                       1 - image,
                       children,
                       -1};
        return reinterpret_cast<HTREEITEM>(Send(s_tree, TVM_INSERTITEM, 0, &record));
    }

    // Everything that the tree tells of an item; its text goes into `text`.
    static TVITEM Get(HTREEITEM item, WCHAR (&text)[16]) {
        TVITEM got = {0x7F, item, 0, 0, text, 16, -5, -5, -5, 0};
        EXPECT_EQ(Send(s_tree, TVM_GETITEM, 0, &got), item == nullptr ? 0 : 1);
        return got;
    }

    // Gives every item that is asked about one child.
    static LRESULT Answer(const Told& told) {
        auto& question = *reinterpret_cast<NMTVDISPINFO*>(told.lParam);
        ++s_asked;
        Insert(question.item.hItem, u"child", I_CHILDRENCALLBACK);
        question.item.cChildren = 1;
        return Send(s_tree, TVM_SETITEM, 0, &question.item);
    }

    static QTreeWidgetItem& RowOf(int index) {
        Send(s_tree, TVM_GETNEXTITEM, TVGN_CARET);
        return *dynamic_cast<QTreeWidget&>(Control(5)).topLevelItem(0)->child(index);
    }

    static HWND s_tree;
    static int s_asked;
};

HWND TreeTest::s_tree = nullptr;
int TreeTest::s_asked = 0;

TEST_F(TreeTest, ItemsAreSortedFoundAndRead) {
    const HTREEITEM root = Insert(TVI_ROOT, u"\\", 1);
    const HTREEITEM windows = Insert(root, u"Windows", 3);
    const HTREEITEM temp = Insert(root, u"temp", 0);
    EXPECT_EQ(RowOf(0).text(0), "temp");
    EXPECT_EQ(Send(s_tree, TVM_GETNEXTITEM, TVGN_PARENT, temp), reinterpret_cast<LRESULT>(root));
    EXPECT_EQ(Send(s_tree, TVM_GETNEXTITEM, TVGN_PARENT, root), 0);
    EXPECT_EQ(Send(s_tree, TVM_GETNEXTITEM, TVGN_CARET), 0);
    WCHAR text[16] = {};
    const TVITEM got = Get(windows, text);
    EXPECT_EQ(std::u16string(text), u"Windows");
    EXPECT_EQ(got.lParam, -1);
    EXPECT_EQ(got.cChildren, 3);
    EXPECT_EQ(Get(nullptr, text).cChildren, -5);
    EXPECT_EQ(Insert(reinterpret_cast<HTREEITEM>(DWORD_PTR{99}), u"x", 0), nullptr);
}

TEST_F(TreeTest, ASelectedItemHasAnImageOfItsOwn) {
    const HTREEITEM root = Insert(TVI_ROOT, u"\\", 1);
    const HTREEITEM first = Insert(root, u"a", 0, 0);
    Insert(root, u"b", 0, 1);
    const auto shown = [](int index, QIcon::Mode mode) {
        return RowOf(index).icon(0).pixmap(16, mode).toImage();
    };
    EXPECT_EQ(shown(0, QIcon::Normal), shown(1, QIcon::Selected));
    EXPECT_EQ(shown(1, QIcon::Normal), shown(0, QIcon::Selected));
    EXPECT_NE(shown(0, QIcon::Normal), shown(0, QIcon::Selected));
    const std::array<int, 4> rows[] = {
        {0, 0, 0, 1}, {TVIF_IMAGE, 1, 1, 1}, {TVIF_SELECTEDIMAGE, 0, 1, 0}};
    for (const auto& [mask, set, image, selected] : rows) {
        const TVITEM given = {static_cast<UINT>(mask), first, 0, 0, nullptr, 0, set, set, 0, 0};
        Send(s_tree, TVM_SETITEM, 0, &given);
        WCHAR text[16] = {};
        const TVITEM got = Get(first, text);
        EXPECT_EQ(got.iImage, image);
        EXPECT_EQ(got.iSelectedImage, selected);
    }
}

TEST_F(TreeTest, WhoeverReadsAnItemIsGivenTheAnswer) {
    const HTREEITEM item = Insert(TVI_ROOT, u"\\", I_CHILDRENCALLBACK);
    WCHAR text[16] = {};
    EXPECT_EQ(Get(item, text).cChildren, 0) << "nobody has answered";
    g_hook = [](const Told& told) -> LRESULT {
        return reinterpret_cast<NMTVDISPINFO*>(told.lParam)->item.cChildren = ++s_asked;
    };
    EXPECT_EQ(Get(item, text).cChildren, 1);
    EXPECT_EQ(Get(item, text).cChildren, 2) << "kept though the program has not stored it";
    g_hook = Answer;
    EXPECT_EQ(Get(item, text).cChildren, 1);
    EXPECT_EQ(Get(item, text).cChildren, 1);
    EXPECT_EQ(s_asked, 3);
}

TEST_F(TreeTest, UnseenUnitsAreShownAndReadBack) {
    const HWND list = Add(TEXT("LISTBOX"), 0x50b0100b, {2, 2, 212, 92}, 6);
    const HWND edit = Add(TEXT("EDIT"), WS_BORDER, {2, 100, 212, 118}, 7);
    const std::pair<std::u16string, QString> rows[] = {
        {u"a\t\r\n\x202Eg\xDC00\xD800", "a<0009><000D><000A><202E>g<DC00><D800>"},
        {u"\xDB40\xDC41\xF02A*\x00A0\xFE0F", "<DB40><DC41><F02A>*<00A0><FE0F>"},
        {u"<000A><A>\xE9\xD83D\xDE00", "<003C>000A><A>\u00E9\U0001F600"}};
    for (const auto& [text, shown] : rows) {
        WCHAR copies[2][16] = {};
        Get(Insert(TVI_ROOT, text, 0), copies[0]);
        Send(list, LB_RESETCONTENT);
        Send(list, LB_ADDSTRING, 0, text.c_str());
        Send(list, LB_GETTEXT, 0, copies[1]);
        Send(edit, WM_SETTEXT, 0, text.c_str());
        EXPECT_EQ((std::array<std::u16string, 3>{copies[0], copies[1], TextOf(edit)}),
                  (std::array{text, text, text}));
        EXPECT_EQ(dynamic_cast<QListView&>(Control(6)).model()->index(0, 0).data(), shown);
        EXPECT_EQ(dynamic_cast<QTreeWidget&>(Control(5)).findItems(shown, {}).size(), 1);
        EXPECT_EQ(dynamic_cast<QLineEdit&>(Control(7)).text(), shown);
        QTest::keyClick(&Control(7), Qt::Key_Z);
        EXPECT_EQ(TextOf(edit), u'z' + text);
    }
}

TEST_F(TreeTest, OnlyRowsInViewAreAskedAbout) {
    g_hook = Answer;
    const HTREEITEM root = Insert(TVI_ROOT, u"\\", 1);
    for (int index = 0; index < 2000; ++index) {
        Insert(root, QStringLiteral("%1").arg(index).toStdU16String(), I_CHILDRENCALLBACK);
    }
    EXPECT_EQ(s_asked, 0);
    Dispatch();
    EXPECT_EQ(s_asked, 0) << "asked about rows below a closed one";
    EXPECT_EQ(Send(s_tree, TVM_EXPAND, TVE_EXPAND, root), 1);
    EXPECT_GT(s_asked, 5);
    EXPECT_LT(s_asked, 20);
    const int asked = s_asked;
    Control(5).grab();
    Dispatch();
    EXPECT_EQ(s_asked, asked);
}

}  // namespace
