// The whole program on an offscreen display, with a user's mouse and keys.

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QTabBar>
#include <random>

#include "tests/support/apply_device.h"
#include "tests/support/control_rows.h"
#include "tests/support/display_fixture.h"
#include "tests/support/displayed_run.h"
#include "tests/support/temporary_device.h"

namespace {

// How much room a widget's text takes up, and what stands beside it.
QSize RoomNeeded(const QWidget& widget) {
    const auto* const combo = qobject_cast<const QComboBox*>(&widget);
    const bool button = qobject_cast<const QPushButton*>(&widget) != nullptr;
    const bool box = qobject_cast<const QCheckBox*>(&widget) != nullptr;
    const QString text =
        combo != nullptr ? combo->itemText(combo->count() - 1) : widget.property("text").toString();
    const int edges = button || combo != nullptr ? 4 : 0;
    const int beside = combo != nullptr ? 16 : box ? 15 : 0;
    return widget.fontMetrics().size(Qt::TextSingleLine, text) + QSize(edges + beside, edges);
}

int ShownScreen() {
    return Host().findChild<QTabBar*>()->currentIndex();
}

QWidget& Page() {
    return *Control(50001).parentWidget();
}

QScrollBar& Bar() {
    return *Page().parentWidget()->findChild<QScrollBar*>(QString(), Qt::FindDirectChildrenOnly);
}

void ExpectControls() {
    EXPECT_EQ(QRect(Page().mapTo(&Host(), QPoint(0, 0)), Page().size()), QRect(4, 30, 219, 239));
    const auto widgets = Page().findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly);
    ASSERT_EQ(static_cast<std::size_t>(widgets.size()), std::size(kControlRows));
    auto widget = widgets.begin();
    for (const ControlRow& row : kControlRows) {
        const int height = row.kind.height == 72 ? 20 : row.kind.height;  // of a closed combo box
        EXPECT_EQ((*widget)->geometry(), QRect(row.x, row.y - Bar().value(), row.width, height));
        EXPECT_EQ((*widget)->isVisible(), static_cast<int>(row.screen) == ShownScreen());
        const QSize room = RoomNeeded(**widget++);
        EXPECT_TRUE(room.width() <= row.width && room.height() <= height) << row.id;
    }
}

void Turn(QPoint at, int units) {
    QWidget* const child = Page().childAt(at);
    TurnWheel(child == nullptr ? Page() : *child, {0, units});
}

// Arrows, the thumb and what is beside it, as the places have it.
void DragOnBar(int from, int to) {
    QTest::mousePress(&Bar(), Qt::LeftButton, Qt::NoModifier, QPoint(6, from));
    QMouseEvent move(QEvent::MouseMove, QPointF(6, to), Bar().mapToGlobal(QPointF(6, to)),
                     Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&Bar(), &move);
    QTest::mouseRelease(&Bar(), Qt::LeftButton, Qt::NoModifier, QPoint(6, to));
}

// Many things are done before the program looks at the first.
TEST(DisplayedProgram, EveryPageHasItsControlsInTheirPlaces) {
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    const auto number = [&](int count) {
        return static_cast<int>(random() % static_cast<unsigned>(count));
    };
    const TemporaryDevice device({"App/"});
    int shown = 0;
    int scrolled = 0;
    Steps steps = {ExpectControls};
    for (int round = 0; round < 400; ++round) {
        const int choice = number(8);
        steps.emplace_back([choice, number] {
            for (int more = choice == 0 ? 0 : number(4); more >= 0; --more) {
                choice == 0  ? NextTab()
                : choice < 3 ? Turn(QPoint(number(219), number(239)), number(600) - 300)
                             : DragOnBar(number(Bar().height()), number(Bar().height()));
            }
        });
        shown = (shown + (choice == 0 ? 1 : 0)) % 6;
        steps.emplace_back([choice, shown, &scrolled] {
            ExpectControls();
            EXPECT_EQ(ShownScreen(), shown);
            EXPECT_TRUE(choice != 0 || Bar().value() == 0) << "the new page is not at its top";
            scrolled += Bar().value() > 0 ? 1 : 0;
        });
    }
    EXPECT_EQ(RunDisplayed(device, steps), Entries());
    EXPECT_GT(scrolled, 0);
}

TEST(DisplayedProgram, TheControlWithTheKeyboardIsInView) {
    const TemporaryDevice device({"App/"});
    int reached = 0;
    Steps steps = {[] { Control(50001).setFocus(); }};
    for (int press = 0; press < 80; ++press) {
        const Qt::Key key = press < 40 ? Qt::Key_Tab : Qt::Key_Backtab;
        steps.emplace_back([key] { QTest::keyClick(QApplication::focusWidget(), key); });
        steps.emplace_back([&reached] {
            const QWidget& focus = *QApplication::focusWidget();
            if (focus.parentWidget() == &Page()) {
                EXPECT_TRUE(Page().rect().contains(focus.geometry()))
                    << focus.objectName().toStdString();
                ++reached;
            }
        });
    }
    RunDisplayed(device, steps);
    EXPECT_GT(reached, 40);
}

TEST(DisplayedProgram, TicksAndTextsAreAppliedAndSaved) {
    using namespace std::string_literals;
    const TemporaryDevice device({"App/", "Temp/a=12345", "../registry.reg="s + kQuietTweaks});
    const auto press = [](int id, Qt::Key key, Qt::KeyboardModifiers with = Qt::NoModifier) {
        return [=] { QTest::keyClick(&Control(id), key, with); };
    };
    Steps steps = {Tap(50001),
                   Tap(50002),
                   [] { QTest::keyClicks(&Control(50002), QStringLiteral("\\a")); },
                   [] { Click(Control(50007), QPoint(190, 9)); },
                   [] { Turn(QPoint(215, 5), -120); },
                   [] { EXPECT_GT(Bar().value(), 0); },
                   NextTab,
                   Tap(50026),
                   [] { Turn(Control(50027).geometry().center(), -120); },
                   press(50027, Qt::Key_Down),
                   press(50027, Qt::Key_Tab, Qt::ControlModifier),
                   [] { EXPECT_EQ(ShownScreen(), 2); },
                   [] { QTest::keyClick(Host().windowHandle(), Qt::Key_Tab); },
                   [] {
                       EXPECT_EQ(QApplication::focusWidget()->property("text"),
                                 "Clear Redundant Registry Keys");
                   }};
    AddMenu(steps, {Qt::Key_F10, Qt::Key_Right, Qt::Key_Up, Qt::Key_Return});
    AddMenu(steps, {Qt::Key_F10, Qt::Key_Down, Qt::Key_Return});
    EXPECT_EQ(RunDisplayed(device, steps),
              (Entries{"[Error] Unable to locate Internet Explorer cache limit",
                       "[Cleaning Finished] 5 Bytes Cleaned",
                       "[Restart Required] Some settings will not take effect until the device has "
                       "been restarted"}));
    const Entries left = {"App/", "App/settings.dat=\x05\x08\x80\0\x02\0\0\0\\\0a\0\x01\0\0\0"s,
                          "Temp/"};
    EXPECT_EQ(device.Listing(), left);
    RunDisplayed(device, {});  // what it does not read and show, it does not save
    EXPECT_EQ(device.Listing(), left);
}

}  // namespace
