// The tree: its items, their images, and what is asked about them.

#include <QLineEdit>
#include <QListView>
#include <QTreeWidget>
#include <array>

#include "core/window_operations.h"
#include "tests/support/display_fixture.h"

namespace {

class TreeControlTest : public DisplayTest {
  protected:
    TreeControlTest() {
        s_tree = Add(TEXT("SysTreeView32"), WS_BORDER | TVS_HASBUTTONS | TVS_HASLINES,
                     {0, 0, 200, 200}, 5);
        s_asked = 0;
    }

    static HTREEITEM Insert(HTREEITEM parent, std::u16string text, int children, int image = 0) {
        constexpr UINT kMask =
            TVIF_TEXT | TVIF_PARAM | TVIF_CHILDREN | TVIF_IMAGE | TVIF_SELECTEDIMAGE;
        const TVITEM item = {kMask, nullptr, 0, 0, text.data(), 0, image, 1 - image, children, -1};
        const TVINSERTSTRUCT record = {parent, TVI_SORT, {item}};
        return reinterpret_cast<HTREEITEM>(Send(s_tree, TVM_INSERTITEM, 0, &record));
    }

    // All that the tree has of an item; its text goes into `text`.
    static TVITEM Get(HTREEITEM item, WCHAR (&text)[16]) {
        TVITEM got = {0x7F, item, 0, 0, text, 16, -5, -5, -5, 0};
        EXPECT_EQ(Send(s_tree, TVM_GETITEM, 0, &got), item == nullptr ? 0 : 1);
        return got;
    }

    // Gives every item that is asked about one child.
    static LRESULT Answer(const ReceivedMessage& received) {
        auto& question = *reinterpret_cast<NMTVDISPINFO*>(received.lParam);
        ++s_asked;
        Insert(question.item.hItem, u"child", I_CHILDRENCALLBACK);
        question.item.cChildren = 1;
        return Send(s_tree, TVM_SETITEM, 0, &question.item);
    }

    static QTreeWidgetItem& RowOf(int index) {
        Send(s_tree, TVM_GETNEXTITEM, TVGN_CARET);
        return *dynamic_cast<QTreeWidget&>(Control(5)).topLevelItem(0)->child(index);
    }

    inline static HWND s_tree = nullptr;
    inline static int s_asked = 0;
};

TEST_F(TreeControlTest, ItemsAreSortedFoundAndRead) {
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
    const auto none = reinterpret_cast<HTREEITEM>(DWORD_PTR{99});
    EXPECT_EQ(Insert(none, u"x", 0), nullptr);
    const TVITEM unknown = {TVIF_IMAGE, none, 0, 0, nullptr, 0, 0, 0, 0, 0};
    for (const UINT message : {TVM_GETITEM, TVM_SETITEM}) {
        EXPECT_EQ(Send(s_tree, message, 0, &unknown), 0);
    }
    EXPECT_EQ(Send(s_tree, TVM_EXPAND, TVE_EXPAND, none), 0);
    EXPECT_EQ(Send(s_tree, TVM_GETNEXTITEM, TVGN_PARENT, none), 0);
}

TEST_F(TreeControlTest, ASelectedItemHasAnImageOfItsOwn) {
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

TEST_F(TreeControlTest, AnItemThatIsReadIsAskedAboutUntilItsChildrenAreStored) {
    const HTREEITEM item = Insert(TVI_ROOT, u"\\", I_CHILDRENCALLBACK);
    WCHAR text[16] = {};
    EXPECT_EQ(Get(item, text).cChildren, 0) << "the program has not answered";
    g_hook = [](const ReceivedMessage& received) -> LRESULT {
        return reinterpret_cast<NMTVDISPINFO*>(received.lParam)->item.cChildren = ++s_asked;
    };
    EXPECT_EQ(Get(item, text).cChildren, 1);
    EXPECT_EQ(Get(item, text).cChildren, 2) << "kept though the program has not stored it";
    g_hook = Answer;
    EXPECT_EQ(Get(item, text).cChildren, 1);
    EXPECT_EQ(Get(item, text).cChildren, 1);
    EXPECT_EQ(s_asked, 3);
}

TEST_F(TreeControlTest, InvisibleUnitsAreShownByNumberAndReadBack) {
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

TEST_F(TreeControlTest, OnlyRowsInViewAreAskedAbout) {
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
