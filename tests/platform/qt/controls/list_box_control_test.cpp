// The list box: its order, and what its user selects.

#include <QListView>
#include <QScrollBar>
#include <QSignalSpy>
#include <initializer_list>

#include "core/window_operations.h"
#include "tests/support/display_fixture.h"

namespace {

class ListBoxControlTest : public DisplayTest {
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

TEST_F(ListBoxControlTest, EntriesAreSortedWithoutRegardToCase) {
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
    for (const LPARAM none : {5, -1, 0x10000}) {
        EXPECT_EQ(Send(list_, LB_GETTEXT, static_cast<WPARAM>(none), untouched), LB_ERR);
        EXPECT_EQ(Send(list_, LB_GETTEXTLEN, static_cast<WPARAM>(none)), LB_ERR);
        EXPECT_EQ(Send(list_, LB_SETSEL, 0, none), none == -1 ? 0 : LB_ERR) << "-1: every entry";
    }
    EXPECT_EQ(std::u16string(untouched), u"zz");
    EXPECT_TRUE(view_.verticalScrollBar()->isVisible());
    EXPECT_TRUE(view_.horizontalScrollBar()->isVisible());
    EXPECT_EQ(view_.horizontalScrollBar()->maximum(), 400 - view_.viewport()->width());
    Send(list_, LB_RESETCONTENT);
    EXPECT_EQ(Send(list_, LB_GETCOUNT), 0);
    Fill({u"x"});
    EXPECT_GT(view_.horizontalScrollBar()->maximum(), 0) << "the extent is gone";
}

TEST_F(ListBoxControlTest, ATapTogglesItsEntryAndLeavesTheOthers) {
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
    EXPECT_TRUE(TakeReceived().empty());
}

TEST_F(ListBoxControlTest, AThousandAddedEntriesAreSortedInByOneInsertion) {
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

TEST_F(ListBoxControlTest, AWheelMovesTheBarOfItsOwnDirectionAlone) {
    Send(list_, LB_SETHORIZONTALEXTENT, 400);
    Fill({u"a", u"b", u"c", u"d", u"e", u"f", u"g", u"h", u"i", u"j", u"k", u"l"});
    const struct {
        QScrollBar* bar;
        QPoint turn;
        bool moved;  // else the page moves
    } rows[] = {{view_.horizontalScrollBar(), {0, -120}, false},
                {view_.horizontalScrollBar(), {-120, 0}, true},
                {view_.verticalScrollBar(), {0, -120}, true}};
    for (const auto& [bar, turn, moved] : rows) {
        EXPECT_EQ(TurnWheel(*bar, turn), moved);
        EXPECT_EQ(bar->value() > 0, moved);
    }
}

TEST_F(ListBoxControlTest, OfAllKeysTheBlankAloneSelects) {
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

}  // namespace
