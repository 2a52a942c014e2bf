// Buttons, edit boxes, combo boxes, sliders and labels: what they report of their user.

#include <QClipboard>

#include "core/window_operations.h"
#include "tests/support/display_fixture.h"

namespace {

class ControlsTest : public DisplayTest {};

TEST_F(ControlsTest, AClickOnAButtonIsReportedOnceItIsDispatched) {
    const HWND box = Add(TEXT("BUTTON"), BS_AUTOCHECKBOX, {2, 2, 102, 20}, 5, TEXT("Box"));
    const HWND push = Add(TEXT("BUTTON"), BS_PUSHBUTTON, {2, 40, 102, 58}, 6, TEXT("Push"));
    const HWND nameless = Add(TEXT("BUTTON"), BS_AUTOCHECKBOX, {2, 60, 102, 78}, 0);
    Click(Control(5));
    Click(*Control(5).parentWidget()->childAt(10, 70));
    EXPECT_EQ(Send(nameless, BM_GETCHECK), 1);
    Click(Control(6));
    EXPECT_EQ(Send(box, BM_GETCHECK), 1);
    Dispatch();
    EXPECT_EQ(TakeReceived(),
              (ReceivedMessages{
                  {page_, WM_COMMAND, MAKELONG(5, BN_CLICKED), reinterpret_cast<LPARAM>(box)},
                  {page_, WM_COMMAND, MAKELONG(6, BN_CLICKED), reinterpret_cast<LPARAM>(push)}}));
}

TEST_F(ControlsTest, ReturnAndBlankPushAButtonAndNoKeyMovesOn) {
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
    EXPECT_TRUE(TakeReceived().empty());
}

TEST_F(ControlsTest, AnEditBoxKeepsEveryUnitAndReportsTyping) {
    const HWND edit = Add(TEXT("EDIT"), WS_BORDER, {2, 2, 162, 20}, 5);
    for (const std::u16string text : {u"\xFEFF\\T", u"\xFFFE", u"\xD800", u"abc"}) {
        Send(edit, WM_SETTEXT, 0, text.c_str());
        EXPECT_EQ(TextOf(edit), text);
    }
    TakeReceived();
    SetFocus(edit);
    QTest::keyClick(&Control(5), Qt::Key_End);
    QTest::keyClicks(&Control(5), QStringLiteral("d"));
    EXPECT_TRUE(TakeReceived().empty());
    Dispatch();
    EXPECT_EQ(TextOf(edit), u"abcd");
    EXPECT_EQ(TakeCodes(), (Codes{EN_SETFOCUS, EN_UPDATE, EN_CHANGE}));
}

// What is pasted is what is shown; nothing pasted changes nothing.
TEST_F(ControlsTest, APastedTextComesWithoutControlsAndCutToItsRoom) {
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
        {QStringLiteral("\n\\Windows"), u"\\Temp\\"},
        {QStringLiteral("\\Temp\r\n\\Windows\n"), u"\\Temp"},
        {QString::fromUtf16(u"\\a\x2029\\b"), u"\\a"},
        {QString(2000, 'x'), std::u16string(1023, u'x')}};
    for (const auto& [text, shown] : pasted) {
        QGuiApplication::clipboard()->setText(text);
        press(Qt::Key_A);
        press(Qt::Key_V);
        EXPECT_EQ(TextOf(edit), shown);
    }
    Send(edit, WM_SETTEXT, 0, u"ad");
    QTest::keyClick(&Control(5), Qt::Key_Right);
    QGuiApplication::clipboard()->setText(QStringLiteral("b\u202E\u200B\nc"));
    press(Qt::Key_V);
    QTest::keyClicks(&Control(5), QStringLiteral("c"));
    EXPECT_EQ(TextOf(edit),
              u"ab\x202E\x200B"
              u"cd");
    EXPECT_EQ(Control(5).property("text"), "ab<202E><200B>cd");
}

TEST_F(ControlsTest, AKeySelectsAnEntryOfAComboBoxAndReportsIt) {
    const HWND combo = Add(TEXT("COMBOBOX"), CBS_DROPDOWNLIST, {146, 80, 216, 152}, 5);
    Send(combo, CB_ADDSTRING, 0, TEXT("b"));
    SetFocus(combo);
    QTest::keyClick(&Control(5), Qt::Key_Down);
    Dispatch();
    EXPECT_EQ(Send(combo, CB_GETCURSEL), 0);
    EXPECT_EQ(TakeCodes(), (Codes{CBN_SETFOCUS, CBN_SELENDOK, CBN_SELCHANGE}));
}

TEST_F(ControlsTest, AKeyMovesASliderAndTheWheelDoesNot) {
    const HWND slider = Add(TEXT("msctls_trackbar32"), TBS_AUTOTICKS, {2, 20, 212, 44}, 5);
    Send(slider, TBM_SETRANGE, 1, LPARAM{0x20000});
    Send(slider, TBM_SETPOS, 1, LPARAM{1});
    TurnWheel(Control(5), {0, 120});
    EXPECT_EQ(Send(slider, TBM_GETPOS), 1) << "the wheel is the page's";
    QTest::keyClick(&Control(5), Qt::Key_Right);
    EXPECT_EQ(Send(slider, TBM_GETPOS), 2);
    Dispatch();
    const ReceivedMessages received = TakeReceived();
    ASSERT_EQ(received.size(), 1U);
    EXPECT_EQ(received[0].message, WM_HSCROLL);
}

TEST_F(ControlsTest, ALabelNamesTheControlAfterIt) {
    Add(TEXT("STATIC"), 0, {2, 2, 100, 20}, 4, TEXT("Search Files"));
    Add(TEXT("BUTTON"), BS_PUSHBUTTON, {104, 2, 164, 20}, 5, TEXT("Refresh"));
    Add(TEXT("BUTTON"), BS_AUTOCHECKBOX, {2, 22, 52, 40}, 6, TEXT("*."));
    Add(TEXT("EDIT"), WS_BORDER, {58, 22, 90, 40}, 7);
    Add(TEXT("LISTBOX"), 0x50b0100b, {2, 42, 212, 132}, 8);
    EXPECT_EQ(Control(7).accessibleName(), QStringLiteral("*."));
    EXPECT_EQ(Control(8).accessibleName(), QStringLiteral("Search Files"));
}

}  // namespace
