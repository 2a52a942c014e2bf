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
        EXPECT_EQ(CodesTold().size(), 2U);
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
    EXPECT_TRUE(CodesTold().empty());
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
    EXPECT_EQ(dynamic_cast<QTreeWidget&>(Control(5)).topLevelItem(0)->child(0)->text(0), "temp");
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
