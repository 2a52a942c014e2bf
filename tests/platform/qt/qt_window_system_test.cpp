// What a user's mouse and keys do to the windows.

#include <QMenu>
#include <QScrollBar>
#include <QTimer>
#include <QWindow>
#include <tuple>

#include "core/window_operations.h"
#include "platform/display/window_repainting_store.h"
#include "tests/support/display_fixture.h"
#include "tests/support/files_alone.h"
#include "tests/support/temporary_device.h"

namespace {

class QtWindowSystemTest : public DisplayTest {};

TEST_F(QtWindowSystemTest, AClickOnTheBarSendsAStepThatFitsOrTheEnd) {
    // A code of -1: no step.
    const std::tuple<int, int, bool, int> rows[] = {
        {157, 0, false, SB_LINEDOWN}, {157, 154, false, SB_LINEDOWN}, {157, 155, false, SB_BOTTOM},
        {157, 3, true, SB_LINEUP},    {157, 2, true, SB_TOP},         {-217, 0, false, -1},
        {-217, 0, true, -1}};
    for (const auto& [highest, position, up, code] : rows) {
        const SCROLLINFO info = {28, 15, 0, highest, 3, position, 0};
        SetScrollInfo(page_, SB_VERT, &info, TRUE);
        QScrollBar& bar = *Host().findChild<QScrollBar*>();
        EXPECT_TRUE(bar.isVisible());
        EXPECT_EQ(bar.isEnabled(), code >= 0);
        Click(bar, QPoint(6, up ? 4 : bar.height() - 4));
        Dispatch();
        const ReceivedMessages step = {{page_, WM_VSCROLL, static_cast<WPARAM>(code), 0}};
        EXPECT_EQ(TakeReceived(), code < 0 ? ReceivedMessages{} : step) << position;
        SCROLLINFO after = {28, SIF_POS, 0, 0, 0, 0, 0};
        GetScrollInfo(page_, SB_VERT, &after);
        EXPECT_EQ(after.nPos, position) << "the bar has moved by itself";
        EXPECT_EQ(bar.value(), position);
    }
}

TEST_F(QtWindowSystemTest, AKeyThatTheControlHasNoUseForScrollsThePage) {
    Add(TEXT("BUTTON"), BS_AUTOCHECKBOX, {2, 2, 102, 20}, 1, TEXT("Box"));
    Add(TEXT("EDIT"), WS_BORDER, {2, 22, 102, 40}, 2);
    Add(TEXT("msctls_trackbar32"), TBS_AUTOTICKS, {2, 42, 212, 66}, 3);
    const HWND list = Add(TEXT("LISTBOX"), 0x50b0100b, {2, 72, 212, 132}, 4);
    Send(list, LB_ADDSTRING, 0, TEXT("a"));
    QCoreApplication::processEvents();
    const SCROLLINFO info = {28, 15, 0, 1000, 3, 300, 0};
    SetScrollInfo(page_, SB_VERT, &info, TRUE);
    using Places = std::vector<int>;
    const std::pair<QWidget*, Places> rows[] = {{&Host(), {79, 521, 0, 1000}},
                                                {&Control(1), {79, 521, 0, 1000}},
                                                {&Control(2), {79, 521}},
                                                {&Control(3), {}},
                                                {&Control(4), {}}};
    for (const auto& [widget, places] : rows) {
        widget->setFocus();
        for (const Qt::Key key : {Qt::Key_PageUp, Qt::Key_PageDown, Qt::Key_Home, Qt::Key_End}) {
            QTest::keyClick(widget, key);
        }
        Dispatch();
        Places reported;
        for (const ReceivedMessage& received : TakeReceived()) {
            if (received.message == WM_VSCROLL) {
                EXPECT_EQ(LOWORD(received.wParam), SB_THUMBPOSITION);
                reported.push_back(HIWORD(received.wParam));
            }
        }
        EXPECT_EQ(reported, places) << widget->objectName().toStdString();
    }
}

TEST_F(QtWindowSystemTest, ClicksOnADestroyedButtonAreDropped) {
    const HWND dying = Add(TEXT("BUTTON"), BS_PUSHBUTTON, {2, 60, 102, 78}, 7, TEXT("Push"));
    Add(TEXT("BUTTON"), BS_PUSHBUTTON, {2, 40, 102, 58}, 6, TEXT("Push"));
    g_hook = [](const ReceivedMessage& received) -> LRESULT {
        return DestroyWindow(received.window);
    };
    Click(Control(7));
    DestroyWindow(dying);
    Click(Control(6));
    Click(Control(6));
    Click(*Control(6).parentWidget(), QPoint(200, 200));
    Dispatch();
    EXPECT_EQ(TakeReceived().size(), 1U) << "a dead window has got a message";
    EXPECT_EQ(GetClientRect(page_, nullptr), 0);
}

TEST_F(QtWindowSystemTest, TheFocusMovesAtOnceAlsoBehindAnotherWindow) {
    const HWND first = Add(TEXT("EDIT"), 0, {2, 60, 102, 78}, 7);
    const HWND second = Add(TEXT("EDIT"), 0, {2, 40, 102, 58}, 6);
    QWidget other;
    other.show();
    other.activateWindow();
    QCoreApplication::processEvents();
    SetFocus(first);
    EXPECT_EQ(SetFocus(second), first);
    EXPECT_EQ(SetFocus(second), second);
}

TEST_F(QtWindowSystemTest, AnOperationOfTheStoreServesTheDesktop) {
    const TemporaryDevice device;
    FilesAlone files(device.OpenFiles());
    auto& display = dynamic_cast<platform::DisplayWindowSystem&>(windows());
    platform::WindowRepaintingStore store(files, [&] { display.ServeDesktop(); });
    bool answered = false;
    QTimer::singleShot(0, qApp, [&] { answered = true; });
    store.DeleteFileW(u"\\none");
    EXPECT_TRUE(answered);
}

TEST_F(QtWindowSystemTest, OnlyTheLeftButtonOnABackgroundIsTheStylus) {
    Add(TEXT("STATIC"), 0, {2, 2, 20, 20}, 5, TEXT("x"));
    Click(*Control(5).parentWidget(), QPoint(100, 90));
    Dispatch();
    EXPECT_EQ(TakeReceived(), (ReceivedMessages{{page_, WM_LBUTTONUP, 0, MAKELONG(100, 90)}}));
    QTest::mouseClick(Control(5).parentWidget(), Qt::RightButton, Qt::NoModifier, QPoint(100, 90));
    Dispatch();
    EXPECT_TRUE(TakeReceived().empty());
}

TEST_F(QtWindowSystemTest, TheOkOnTheCaptionGoesToTheFrontWindow) {
    Add(TEXT("STATIC"), 0, {0, 0, 50, 18}, 5);
    auto& ok = *Host().findChild<QWidget*>(QStringLiteral("captionOk"));
    const HWND box = Open(TEXT("Kept"));
    Click(ok);
    Host().close();
    EXPECT_FALSE(Control(5).isEnabled()) << "what is below can be reached";
    EXPECT_EQ(Host().windowHandle()->title(), u"A device[*] \u2013 Fennelbright");
    Dispatch();
    DestroyWindow(box);
    Click(ok);
    Dispatch();
    const ReceivedMessage ended = {main_, WM_COMMAND, IDOK, 0};
    EXPECT_EQ(TakeReceived(), (ReceivedMessages{{box, WM_COMMAND, IDOK, 0}, ended, ended}));
}

TEST_F(QtWindowSystemTest, TheScreenIsInTheMiddleOfAWindowOfAnotherSize) {
    const auto& ok = *Host().findChild<QWidget*>(QStringLiteral("captionOk"));
    const std::pair<QSize, QPoint> rows[] = {
        {{400, 340}, {283, 13}}, {{241, 320}, {203, 3}}, {{200, 300}, {203, 3}}};
    for (const auto& [size, place] : rows) {
        Host().setFixedSize(size);
        EXPECT_EQ(ok.mapTo(&Host(), QPoint(0, 0)), place);
        RECT bounds{};
        GetWindowRect(main_, &bounds);
        EXPECT_EQ(std::tuple(bounds.left, bounds.top, bounds.right), std::tuple(0, 26, 240));
    }
}

TEST_F(QtWindowSystemTest, AMenuOpensAboveItsBar) {
    SHMENUBARINFO info = {36, main_, SHCMBF_HMENU, kMenuResource, nullptr, 0, 0, nullptr, 0};
    ASSERT_NE(SHCreateMenuBar(&info), 0);
    QTest::keyClick(&Host(), Qt::Key_F10);
    QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Return);
    EXPECT_NE(dynamic_cast<QMenu&>(*QApplication::activePopupWidget()).activeAction(), nullptr);
    QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Right);
    QWidget* const popup = QApplication::activePopupWidget();
    ASSERT_NE(popup, nullptr);
    EXPECT_EQ(popup->y() + popup->height(), Host().mapToGlobal(QPoint(0, 294)).y());
    popup->close();
}

}  // namespace
