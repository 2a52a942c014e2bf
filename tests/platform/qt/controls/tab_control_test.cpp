// The tab control: taps, keys, and the tabs in view.

#include <QTabBar>
#include <QToolButton>
#include <algorithm>

#include "core/window_operations.h"
#include "tests/support/display_fixture.h"

namespace {

class TabControlTest : public DisplayTest {
  protected:
    static QTabBar& Row() { return *Host().findChild<QTabBar*>(); }
    static void Tap(int index) { Click(Row(), Row().tabRect(index).center()); }

    const HWND tabs_ = AddTabs({u"Clean Temp Files", u"Pocket IE", u"Registry", u"System Folders",
                                u"Shortcuts", u"Performance"});
    const int count_ = 6;
};

TEST_F(TabControlTest, ATapAsksBeforeAndReportsAfterTheChange) {
    static HWND tabs = tabs_;
    static std::vector<LRESULT> selections;
    g_hook = [](const ReceivedMessage& received) -> LRESULT {
        selections.push_back(Send(tabs, TCM_GETCURSEL));
        return received.code == TCN_SELCHANGING && selections.size() == 1 ? 1 : 0;
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
            << "changed before the program was asked";
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

TEST_F(TabControlTest, TabsInViewAreWholeAndTheChosenOneIsAmongThem) {
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

TEST_F(TabControlTest, AnArrowMovesTheRowAndChoosesNoTab) {
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

TEST_F(TabControlTest, AControlDestroyedBySelChangingSendsNoSelChange) {
    g_hook = [](const ReceivedMessage& received) -> LRESULT {
        DestroyWindow(reinterpret_cast<const NMHDR*>(received.lParam)->hwndFrom);
        return 0;
    };
    Tap(1);
    Dispatch();
    EXPECT_EQ(TakeCodes(), Codes{TCN_SELCHANGING});
    EXPECT_EQ(ShowWindow(tabs_, SW_HIDE), 0);
}

}  // namespace
