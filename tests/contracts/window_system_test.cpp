// The rules for all windows, through the program's operations and a user's mouse and keys.

#include <QAbstractButton>
#include <QDialog>
#include <QLabel>
#include <QMenuBar>
#include <QScrollBar>
#include <QTimer>
#include <QWindow>
#include <csignal>
#include <functional>

#include "core/window_operations.h"
#include "platform/display/responsive_store.h"
#include "tests/support/display_fixture.h"
#include "tests/support/files_alone.h"
#include "tests/support/temporary_device.h"

namespace {

TEST_F(DisplayTest, EveryOperationFailsOnAHandleThatNamesNothing) {
    const HWND dead = Add(TEXT("EDIT"), WS_BORDER, {0, 0, 50, 18}, 7);
    EXPECT_NE(DestroyWindow(dead), 0);
    RECT rectangle = {1, 2, 3, 4};
    SCROLLINFO info = {28, SIF_ALL, 0, 0, 0, 0, 0};
    SHMENUBARINFO bar = {36, dead, SHCMBF_HMENU, kMenuResource, nullptr, 0, 0, nullptr, 0};
    const MSG message = {dead, WM_COMMAND, 0, 0, 0, {0, 0}};
    for (const HWND window : {HWND{nullptr}, dead, reinterpret_cast<HWND>(DWORD_PTR{0x7777})}) {
        EXPECT_EQ(DestroyWindow(window), 0);
        EXPECT_EQ(ShowWindow(window, SW_SHOWNORMAL), 0);
        EXPECT_EQ(UpdateWindow(window), 0);
        EXPECT_EQ(GetClientRect(window, &rectangle), 0);
        EXPECT_EQ(GetWindowRect(window, &rectangle), 0);
        EXPECT_EQ(MoveWindow(window, 0, 0, 1, 1, FALSE), 0);
        EXPECT_EQ(SetWindowTextW(window, TEXT("text")), 0);
        EXPECT_EQ(SendMessageW(window, WM_SETTEXT, 0, 0), 0);
        EXPECT_EQ(SendDlgItemMessageW(window, 7, WM_SETTEXT, 0, 0), 0);
        EXPECT_EQ(DefWindowProcW(window, WM_COMMAND, 0, 0), 0);
        EXPECT_EQ(GetScrollInfo(window, SB_VERT, &info), 0);
        EXPECT_EQ(SetScrollInfo(window, SB_VERT, &info, TRUE), 0);
        EXPECT_EQ(ScrollWindowEx(window, 0, 1, nullptr, nullptr, nullptr, nullptr, 1), 0);
        bar.hwndParent = window;
        EXPECT_EQ(SHCreateMenuBar(&bar), 0);
        const SHINITDLGINFO dialog = {SHIDIM_FLAGS, window, SHIDIF_SIZEDLG};
        EXPECT_EQ(SHInitDialog(&dialog), 0);
        EXPECT_EQ(CreateWindowExW(0, TEXT("EDIT"), TEXT(""), WS_CHILD, 0, 0, 9, 9, window, nullptr,
                                  nullptr, nullptr),
                  nullptr);
        SetFocus(window);
    }
    EXPECT_EQ(rectangle.bottom, 4);
    EXPECT_EQ(DispatchMessageW(&message), 0);
    EXPECT_NE(Add(TEXT("EDIT"), 0, {0, 0, 50, 18}, 7), dead);
}

TEST_F(DisplayTest, ClassesAreKnownOnceAndNotForgottenWhileAWindowLives) {
    WNDCLASS record{};
    record.lpszClassName = TEXT("Second");
    EXPECT_EQ(RegisterClassW(&record), 0);
    record.lpfnWndProc = DefWindowProcW;
    EXPECT_EQ(UnregisterClassW(TEXT("Second"), nullptr), 0);
    EXPECT_NE(RegisterClassW(&record), 0);
    EXPECT_EQ(RegisterClassW(&record), 0);
    EXPECT_EQ(UnregisterClassW(TEXT("Kept"), nullptr), 0);
    EXPECT_NE(UnregisterClassW(TEXT("second"), nullptr), 0);
    EXPECT_EQ(Open(TEXT("Second")), nullptr);
}

int PositionOf(HWND window) {
    SCROLLINFO info = {28, SIF_ALL, 0, 0, 0, 0, 0};
    EXPECT_NE(GetScrollInfo(window, SB_VERT, &info), 0);
    return info.nPos;
}

QScrollBar& PageScrollBar() {
    return *Host().findChild<QScrollBar*>();
}

TEST_F(DisplayTest, PositionsAreBroughtIntoTheRange) {
    const struct {
        int highest;
        UINT page;
        int position;
        int stored;
    } rows[] = {{157, 3, 157, 157}, {157, 3, 158, 157}, {157, 3, -5, 0}, {157, 500, 156, 156},
                {-217, 3, 0, 0},    {-217, 3, 9, 0},    {0, 0, 1, 0}};
    for (const auto& row : rows) {
        const SCROLLINFO info = {28, 15, 0, row.highest, row.page, row.position, 0};
        EXPECT_EQ(SetScrollInfo(page_, SB_VERT, &info, TRUE), row.stored);
        EXPECT_EQ(PositionOf(page_), row.stored);
        EXPECT_TRUE(PageScrollBar().isVisible());
        EXPECT_EQ(PageScrollBar().isEnabled(), row.highest > 0);
    }
}

TEST_F(DisplayTest, TheBarSaysOnlyStepsThatFit) {
    const struct {
        int highest;
        int position;
        bool up;
        int code;  // -1: none
    } rows[] = {{157, 0, false, SB_LINEDOWN}, {157, 154, false, SB_LINEDOWN},
                {157, 155, false, SB_BOTTOM}, {157, 3, true, SB_LINEUP},
                {157, 2, true, SB_TOP},       {-217, 0, false, -1},
                {-217, 0, true, -1}};
    for (const auto& row : rows) {
        const SCROLLINFO info = {28, 15, 0, row.highest, 3, row.position, 0};
        SetScrollInfo(page_, SB_VERT, &info, TRUE);
        QScrollBar& bar = PageScrollBar();
        Click(bar, QPoint(6, row.up ? 4 : bar.height() - 4));
        Dispatch();
        const AllTold step = {{page_, WM_VSCROLL, static_cast<WPARAM>(row.code), 0}};
        EXPECT_EQ(TakeTold(), row.code < 0 ? AllTold{} : step) << row.position;
        EXPECT_EQ(PositionOf(page_), std::max(0, row.position)) << "the bar has moved by itself";
        EXPECT_EQ(bar.value(), PositionOf(page_));
    }
}

TEST_F(DisplayTest, WhatADeadWindowHasSaidIsNotTold) {
    const HWND dying = Add(TEXT("BUTTON"), BS_PUSHBUTTON, {2, 60, 102, 78}, 7, TEXT("Push"));
    Add(TEXT("BUTTON"), BS_PUSHBUTTON, {2, 40, 102, 58}, 6, TEXT("Push"));
    g_hook = [](const Told& told) -> LRESULT { return DestroyWindow(told.window); };
    Click(Control(7));
    DestroyWindow(dying);
    Click(Control(6));
    Click(Control(6));
    Click(*Control(6).parentWidget(), QPoint(200, 200));
    Dispatch();
    EXPECT_EQ(TakeTold().size(), 1U) << "a dead window was told";
    EXPECT_EQ(GetClientRect(page_, nullptr), 0);
}

TEST_F(DisplayTest, TheDesktopIsAnsweredWhileTheProgramWorks) {
    const TemporaryDevice device;
    FilesAlone files(device.OpenFiles());
    platform::ResponsiveStore store(files, windows());
    bool answered = false;
    QTimer::singleShot(0, qApp, [&] { answered = true; });
    store.DeleteFileW(u"\\none");
    EXPECT_TRUE(answered);
}

TEST_F(DisplayTest, TheStylusOnABackgroundIsTold) {
    Add(TEXT("STATIC"), 0, {2, 2, 20, 20}, 5, TEXT("x"));
    Click(*Control(5).parentWidget(), QPoint(100, 90));
    Dispatch();
    EXPECT_EQ(TakeTold(), (AllTold{{page_, WM_LBUTTONUP, 0, MAKELONG(100, 90)}}));
    QTest::mouseClick(Control(5).parentWidget(), Qt::RightButton, Qt::NoModifier, QPoint(100, 90));
    Dispatch();
    EXPECT_TRUE(TakeTold().empty());
}

class BoxTest : public DisplayTest {
  protected:
    // Shows a box; `step` is what the user does once it is up.
    static int Show(UINT type, std::function<void(QDialog&)> step,
                    const std::u16string& text = u"Text") {
        QTimer::singleShot(0, qApp, [step = std::move(step)] {
            auto* const box = dynamic_cast<QDialog*>(QApplication::activeModalWidget());
            ASSERT_NE(box, nullptr);
            step(*box);
        });
        return MessageBoxW(nullptr, text.c_str(), TEXT("Caption"), type);
    }

    static void Press(QDialog& box, int answer) {
        Click(*box.findChild<QWidget*>(QStringLiteral("answer%1").arg(answer)));
    }
};

TEST_F(BoxTest, BoxesAreAnsweredByTheirUser) {
    const struct {
        UINT type;
        int pressed;  // 0: the box is closed
        int answer;
    } rows[] = {{MB_OK, IDOK, IDOK},
                {MB_OK, 0, IDOK},
                {MB_YESNO, IDYES, IDYES},
                {MB_YESNO | MB_ICONEXCLAMATION, IDNO, IDNO},
                {MB_YESNO, 0, IDNO}};
    for (const auto& row : rows) {
        const int answer = Show(row.type, [&](QDialog& box) {
            EXPECT_EQ(box.windowTitle(), QStringLiteral("Caption"));
            row.pressed == 0 ? static_cast<void>(box.close()) : Press(box, row.pressed);
        });
        EXPECT_EQ(answer, row.answer) << row.type << ' ' << row.pressed;
    }
}

TEST_F(BoxTest, NoTextDisturbsABox) {
    const std::pair<std::u16string, QString> rows[] = {
        {u"Two\r\nlines \x202Egpj.exe\xD800", "Two\nlines <202E>gpj.exe<D800>"},
        {std::u16string(5000, u'W'), QString(5000, 'W')}};
    for (const auto& [text, shown] : rows) {
        const auto look = [&shown = shown](QDialog& box) {
            EXPECT_EQ(box.findChild<QLabel*>()->accessibleName(), shown);
            EXPECT_EQ(QRect(0, 0, 240, 320) | box.rect(), QRect(0, 0, 240, 320));
            for (const bool seen : {true, false}) {
                RepeatKey(*box.findChild<QWidget*>(QStringLiteral("answer6")), Qt::Key_Return,
                          seen);
            }
            RepeatKey(box, Qt::Key_Return);
            EXPECT_TRUE(box.isVisible()) << "answered by a key held down since before";
            Press(box, IDNO);
        };
        Show(MB_YESNO, look, text);
    }
}

TEST_F(BoxTest, NothingIsDispatchedWhileABoxIsUp) {
    Add(TEXT("BUTTON"), BS_PUSHBUTTON, {2, 40, 102, 58}, 6, TEXT("Push"));
    Show(MB_OK, [](QDialog& box) {
        qobject_cast<QAbstractButton*>(&Control(6))->click();
        Press(box, IDOK);
    });
    EXPECT_TRUE(TakeTold().empty());
    Dispatch();
    EXPECT_EQ(TakeTold().size(), 1U);
}

TEST_F(BoxTest, ClosingTheWindowAnswersTheBoxAndEndsTheProgramOnce) {
    EXPECT_EQ(Show(MB_YESNO, [](QDialog& /*box*/) { Host().close(); }), IDNO);
    Host().close();
    Dispatch();
    EXPECT_EQ(TakeTold(), (AllTold{{main_, WM_COMMAND, IDOK, 0}}));
    EXPECT_TRUE(Host().isVisible());
}

TEST_F(BoxTest, AfterASignalNoBoxWaits) {
    EXPECT_EQ(Show(MB_OK, [](QDialog& /*box*/) { std::raise(SIGTERM); }), IDOK);
    testing::internal::CaptureStderr();
    EXPECT_EQ(MessageBoxW(nullptr, TEXT("Text"), TEXT("Caption"), MB_YESNO), IDNO);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "[Caption] Text\n");
    std::raise(SIGHUP);
    Dispatch();
    EXPECT_EQ(TakeTold().size(), 1U);
}

TEST_F(DisplayTest, TheCaptionBelongsToTheFrontWindow) {
    Add(TEXT("STATIC"), 0, {0, 0, 50, 18}, 5);
    auto& ok = *Host().findChild<QWidget*>(QStringLiteral("captionOk"));
    const HWND box = Open(TEXT("Kept"));
    Click(ok);
    Host().close();
    EXPECT_FALSE(Control(5).isEnabled()) << "what is behind can be reached";
    EXPECT_EQ(Host().windowHandle()->title(), "A device[*]");
    Dispatch();
    DestroyWindow(box);
    Click(ok);
    Dispatch();
    const Told ended = {main_, WM_COMMAND, IDOK, 0};
    EXPECT_EQ(TakeTold(), (AllTold{{box, WM_COMMAND, IDOK, 0}, ended, ended}));
}

TEST_F(DisplayTest, MenusOpenUpward) {
    SHMENUBARINFO info = {36, main_, SHCMBF_HMENU, 7, nullptr, 0, 0, nullptr, 0};
    EXPECT_EQ(SHCreateMenuBar(&info), 0);
    info.nToolBarId = kMenuResource;
    ASSERT_NE(SHCreateMenuBar(&info), 0);
    EXPECT_EQ(BoundsOf(info.hwndMB), QRect(0, 294, 240, 26));
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
