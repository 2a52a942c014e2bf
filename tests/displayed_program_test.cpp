// The whole program on a display that nobody sees, with a user's mouse and keys.

#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QPushButton>
#include <QScrollBar>
#include <QStyle>
#include <QTabBar>
#include <QTimer>
#include <QWheelEvent>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "core/application.h"
#include "core/win_main.h"
#include "platform/directory_store.h"
#include "screens/catalogue.h"
#include "tests/display_fixture.h"
#include "tests/failing_windows.h"
#include "tests/temporary_device.h"

namespace {

using Steps = std::vector<std::function<void()>>;

// Carries out one step each time that the program waits, answers boxes, and ends the program.
class User {
  public:
    explicit User(Steps steps) : steps_(std::move(steps)) {
        QObject::connect(&clock_, &QTimer::timeout, &clock_, [this] { Act(); });
        clock_.start(0);
    }

    int boxes() const { return boxes_; }

  private:
    void Act() {
        if (auto* const box = dynamic_cast<QDialog*>(QApplication::activeModalWidget())) {
            ++boxes_;
            box->reject();
        } else if (next_ < steps_.size()) {
            steps_[next_++]();
        } else if (auto* const ok = Ok(); ++ends_ < 5 && ok != nullptr && ok->isVisible()) {
            Click(*ok);
        } else if (ends_ >= 5 || ok == nullptr || !ok->isVisible()) {
            g_Running = false;
            QCoreApplication::postEvent(qApp, new QEvent(QEvent::Quit));
        }
    }

    static QWidget* Ok() { return Host().findChild<QWidget*>(QStringLiteral("captionOk")); }

    Steps steps_;
    QTimer clock_;
    std::size_t next_ = 0;
    int ends_ = 0;
    int boxes_ = 0;
};

struct Ended {
    int calls;
    int boxes;
};

// Runs the program on a device; the n-th call to the window system fails, 0 for none.
Ended RunDisplayed(const TemporaryDevice& device, const Steps& steps, int failing = 0) {
    platform::DirectoryStore store(device.OpenFiles(), u"\\App\\Fennelbright.exe",
                                   device.OpenRegistry());
    const std::unique_ptr<platform::DisplayWindows> windows = OpenUnseen();
    FailingWindows faulty(*windows, failing, -1);
    const platform::StoreInUse storeInUse(store);
    const platform::WindowsInUse windowsInUse(faulty);
    const User user(steps);
    std::u16string noWords;
    EXPECT_EQ(WinMain(nullptr, nullptr, noWords.data(), 0), 0);
    return {faulty.calls(), user.boxes()};
}

// How much room a widget's text takes up, and what stands beside it.
QSize RoomNeeded(const QWidget& widget) {
    const auto text = [&](const QString& label) {
        return widget.fontMetrics().size(Qt::TextSingleLine, label);
    };
    const QStyle& style = *widget.style();
    if (const auto* const box = qobject_cast<const QCheckBox*>(&widget)) {
        const int side = style.pixelMetric(QStyle::PM_IndicatorWidth, nullptr, box) +
                         style.pixelMetric(QStyle::PM_CheckBoxLabelSpacing, nullptr, box);
        return text(box->text()) + QSize(side, 0);
    }
    if (const auto* const button = qobject_cast<const QPushButton*>(&widget)) {
        constexpr int kEdges = 4;
        return text(button->text()) + QSize(kEdges, kEdges);
    }
    if (const auto* const label = qobject_cast<const QLabel*>(&widget)) {
        return text(label->text());
    }
    if (const auto* const combo = qobject_cast<const QComboBox*>(&widget)) {
        constexpr int kArrow = 16;
        return text(combo->itemText(combo->count() - 1)) + QSize(kArrow + 4, 4);
    }
    return {0, widget.fontMetrics().height()};
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

QWidget& WidgetOf(const CatalogueControl& control) {
    for (auto* const label : Page().findChildren<QLabel*>()) {
        if (control.id == 0 && label->text() == QString::fromUtf16(control.text)) {
            return *label;
        }
    }
    return Control(control.id);
}

void ExpectCatalogue() {
    int screen = 0;
    for (const CatalogueScreen& each : Catalogue()) {
        for (const CatalogueControl& control : each.controls) {
            const QWidget& widget = WidgetOf(control);
            const bool combo = qobject_cast<const QComboBox*>(&widget) != nullptr;
            EXPECT_EQ(widget.geometry(), QRect(control.x, control.y - Bar().value(), control.width,
                                               combo ? 20 : control.height))
                << control.id;
            EXPECT_EQ(widget.isVisible(), screen == ShownScreen()) << control.id;
            const QSize room = RoomNeeded(widget);
            EXPECT_LE(room.width(), widget.width()) << control.id;
            EXPECT_LE(room.height(), widget.height()) << control.id;
        }
        ++screen;
    }
}

void Turn(int units) {
    QWheelEvent wheel(QPointF(215, 5), Page().mapToGlobal(QPointF(215, 5)), {}, {0, units},
                      Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(&Page(), &wheel);
}

// Arrows, the thumb and what is beside it, as the places have it.
void DragOnBar(int from, int to) {
    QTest::mousePress(&Bar(), Qt::LeftButton, Qt::NoModifier, QPoint(6, from));
    QMouseEvent move(QEvent::MouseMove, QPointF(6, to), Bar().mapToGlobal(QPointF(6, to)),
                     Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&Bar(), &move);
    QTest::mouseRelease(&Bar(), Qt::LeftButton, Qt::NoModifier, QPoint(6, to));
}

void NextTab() {
    QTest::keyClick(&Host(), Qt::Key_Tab, Qt::ControlModifier);
}

TEST(DisplayedProgram, EveryControlStandsWhereTheCatalogueSays) {
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    const auto number = [&](int count) {
        return static_cast<int>(random() % static_cast<unsigned>(count));
    };
    const TemporaryDevice device;
    device.Make({"App/"});
    int shown = 0;
    int scrolled = 0;
    Steps steps = {ExpectCatalogue};
    for (int round = 0; round < 400; ++round) {
        steps.emplace_back([&] {
            switch (number(8)) {
                case 0:
                    shown = (shown + 1) % 6;
                    return NextTab();
                case 1:
                    return Turn(number(600) - 300);
                default:
                    return DragOnBar(number(Bar().height()), number(Bar().height()));
            }
        });
        steps.emplace_back([&] {
            ExpectCatalogue();
            EXPECT_EQ(ShownScreen(), shown);
            scrolled += Bar().value() > 0 ? 1 : 0;
        });
    }
    EXPECT_EQ(RunDisplayed(device, steps).boxes, 0);
    EXPECT_GT(scrolled, 0);
}

TEST(DisplayedProgram, AChosenTabShowsItsPageFromTheTop) {
    const TemporaryDevice device;
    device.Make({"App/"});
    RunDisplayed(device, {[] { Turn(-1200); }, [] { EXPECT_GT(Bar().value(), 0); }, NextTab,
                          [] { EXPECT_EQ(Bar().value(), 0); }});
}

TEST(DisplayedProgram, WhatTheUserTicksAndTypesIsSaved) {
    const TemporaryDevice device;
    device.Make({"App/"});
    RunDisplayed(
        device,
        {[] { Click(Control(50001)); }, [] { Click(Control(50002)); },
         [] { QTest::keyClicks(&Control(50002), QStringLiteral("\\a")); },
         [] { Click(Control(50007), QPoint(190, 9)); }, NextTab, [] { Click(Control(50026)); },
         [] { QTest::keyClick(&Control(50027), Qt::Key_Down); },
         [] { QTest::keyClick(&Host(), Qt::Key_Tab, Qt::ControlModifier | Qt::ShiftModifier); }});
    using namespace std::string_literals;
    EXPECT_EQ(ReadFile(device.files() + "/App/settings.dat"),
              "\x05\x08\x80\0\x02\0\0\0\\\0a\0\x01\0\0\0"s);
}

TEST(DisplayedProgram, NoFailingCallOfTheWindowSystemBreaksIt) {
    const Steps steps = {[] { Turn(-120); }, NextTab, NextTab};
    const TemporaryDevice whole;
    whole.Make({"App/"});
    const int calls = RunDisplayed(whole, steps).calls;
    for (int failing = 1; failing <= calls; failing += 1 + failing / 8) {
        SCOPED_TRACE(failing);
        const TemporaryDevice device;
        device.Make({"App/"});
        RunDisplayed(device,
                     {[] { QTest::keyClick(&Host(), Qt::Key_Tab, Qt::ControlModifier); },
                      [] { QTest::keyClick(&Host(), Qt::Key_F10); },
                      [] {
                          if (QWidget* const popup = QApplication::activePopupWidget()) {
                              popup->close();
                          }
                      }},
                     failing);
    }
}

}  // namespace
