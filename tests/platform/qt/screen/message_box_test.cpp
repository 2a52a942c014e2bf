#include <QAbstractButton>
#include <QDialog>
#include <QLabel>
#include <QTimer>
#include <csignal>
#include <functional>
#include <tuple>

#include "core/window_operations.h"
#include "tests/support/display_fixture.h"

namespace {

class MessageBoxTest : public DisplayTest {
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

TEST_F(MessageBoxTest, AnyTextFitsTheScreenAndAHeldKeyAnswersNothing) {
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

TEST_F(MessageBoxTest, NothingIsDispatchedWhileABoxIsUp) {
    Add(TEXT("BUTTON"), BS_PUSHBUTTON, {2, 40, 102, 58}, 6, TEXT("Push"));
    Show(MB_OK, [](QDialog& box) {
        qobject_cast<QAbstractButton*>(&Control(6))->click();
        Press(box, IDOK);
    });
    EXPECT_TRUE(TakeReceived().empty());
    Dispatch();
    EXPECT_EQ(TakeReceived().size(), 1U);
}

TEST_F(MessageBoxTest, ClosingTheWindowAnswersTheBoxAndEndsTheProgramOnce) {
    EXPECT_EQ(Show(MB_YESNO, [](QDialog& /*box*/) { Host().close(); }), IDNO);
    Host().close();
    Dispatch();
    EXPECT_EQ(TakeReceived(), (ReceivedMessages{{main_, WM_COMMAND, IDOK, 0}}));
    EXPECT_TRUE(Host().isVisible());
}

TEST_F(MessageBoxTest, AfterASignalNoBoxWaits) {
    EXPECT_EQ(Show(MB_OK, [](QDialog& /*box*/) { std::raise(SIGTERM); }), IDOK);
    testing::internal::CaptureStderr();
    EXPECT_EQ(MessageBoxW(nullptr, TEXT("Text"), TEXT("Caption"), MB_YESNO), IDNO);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "[Caption] Text\n");
    std::raise(SIGHUP);
    Dispatch();
    EXPECT_EQ(TakeReceived().size(), 1U);
}

}  // namespace
