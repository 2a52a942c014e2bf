// Tab control and tree.

#include <QTabBar>
#include <QToolButton>
#include <QTreeWidget>
#include <algorithm>
#include <array>
#include <string>

#include "core/window_system.h"
#include "tests/display_fixture.h"

namespace {

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

TEST_F(TreeTest, OnlyRowsInViewAreAskedAbout) {
    g_hook = Answer;
    const HTREEITEM root = Insert(TVI_ROOT, u"\\", 1);
    for (int index = 0; index < 100; ++index) {
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
