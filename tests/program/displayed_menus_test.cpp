// The menus "Power" and "Help", chosen by keys on an offscreen display.

#include <QCheckBox>
#include <QLabel>
#include <tuple>

#include "core/application.h"
#include "shell/about_box.h"
#include "tests/support/display_fixture.h"
#include "tests/support/displayed_run.h"

namespace {

const std::string kFirst =
    "[Please Confirm] WARNING: Hard Reseting Will Erase ALL data!!!\n\nMarlowtide accepts no "
    "reposibility for data loss resulting from the use of this function.\n\nDo you wish to perform "
    "a hard reset?";
const std::string kSecond = "[Please Confirm] Are you really sure?";

// From the first menu on.
using Keys = std::initializer_list<Qt::Key>;
const Keys kOff = {Qt::Key_F10, Qt::Key_Right, Qt::Key_Right, Qt::Key_Return};
const Keys kSoftReset = {Qt::Key_F10, Qt::Key_Right, Qt::Key_Right, Qt::Key_Down, Qt::Key_Return};
const Keys kHardReset = {Qt::Key_F10, Qt::Key_Right, Qt::Key_Right, Qt::Key_Up, Qt::Key_Return};
const Keys kIndex = {Qt::Key_F10, Qt::Key_Left, Qt::Key_Return};
const Keys kAbout = {Qt::Key_F10, Qt::Key_Left, Qt::Key_Up, Qt::Key_Return};
const Keys kExit = {Qt::Key_F10, Qt::Key_Down, Qt::Key_Return};

TEST(DisplayedMenus, EachCommandAsksAndDoesWhatItSays) {
    const std::tuple<Keys, std::deque<int>, Entries, Entries> cases[] = {
        {kSoftReset, {}, {}, {"restart"}},
        {kHardReset, {}, {kFirst}, {}},  // closed without an answer
        {kHardReset, {IDNO}, {kFirst}, {}},
        {kHardReset, {IDYES}, {kFirst, kSecond}, {}},
        {kHardReset, {IDYES, IDNO}, {kFirst, kSecond}, {}},
        {kHardReset, {IDYES, IDYES}, {kFirst, kSecond}, {"erase", "restart"}},
        {kIndex, {}, {}, {"start peghelp.exe file:brightdoc.htm#Main_Contents"}},
    };
    for (const auto& [keys, answers, boxes, made] : cases) {
        const TemporaryDevice device({"App/"});
        Entries calls;
        Steps steps;
        AddMenu(steps, keys);
        steps.emplace_back([&] { EXPECT_EQ(device.Listing(), Entries{"App/"}); });
        EXPECT_EQ(RunDisplayed(device, steps, answers, &calls), boxes);
        EXPECT_EQ(calls, made);
    }
}

QWidget* Cover() {
    return Host().findChild<QWidget*>(QStringLiteral("screenOff"));
}

TEST(DisplayedMenus, AKeyOrClickThatSwitchesTheDeviceOnDoesNothingElse) {
    const auto isTicked = [] { return dynamic_cast<QCheckBox&>(Control(50001)).isChecked(); };
    const auto pressKey = [] { QTest::keyClick(Host().windowHandle(), Qt::Key_Space); };
    const auto click = [] {
        const QPoint at = Control(50001).mapTo(&Host(), QPoint(9, 9));
        QTest::mouseClick(Host().windowHandle(), Qt::LeftButton, Qt::NoModifier, at);
    };
    for (const std::function<void()>& act : {std::function<void()>(pressKey), {click}}) {
        const TemporaryDevice device({"App/"});
        Steps steps = {[] { Control(50001).setFocus(); }};
        AddMenu(steps, kOff);
        steps.insert(
            steps.end(),
            {[] { EXPECT_EQ(Cover()->visibleRegion().boundingRect(), Host().rect()); },
             [] { QTest::keyRelease(Host().windowHandle(), Qt::Key_Return); },
             [] { EXPECT_TRUE(Cover()->isVisible()); },
             [] { RepeatKey(*Cover(), Qt::Key_Return), RepeatKey(*Cover(), Qt::Key_Return); },
             [] { EXPECT_TRUE(Cover()->isVisible()); }, act,
             [&] { EXPECT_FALSE(Cover()->isVisible() || isTicked()); }, act,
             [&] { EXPECT_TRUE(isTicked()); }});
        EXPECT_EQ(RunDisplayed(device, steps), Entries());
    }
}

QLabel* AboutLabel() {
    for (auto* const label : Host().findChildren<QLabel*>()) {
        if (label->text().startsWith(QStringLiteral("Fennelbright V1.01\n"))) {
            return label;
        }
    }
    return nullptr;
}

TEST(DisplayedMenus, TheAboutBoxOpensAgainAfterItWasClosed) {
    const TemporaryDevice device({"App/"});
    const auto look = [] {
        EXPECT_EQ(g_AboutControls.Count(), 1u);
        RECT bounds{};
        GetWindowRect(g_AboutWindow, &bounds);
        EXPECT_EQ(std::tuple(bounds.left, bounds.top, bounds.right, bounds.bottom),
                  std::tuple(0, 26, 240, 294));
        EXPECT_EQ(AboutLabel()->geometry(), QRect(2, 2, 200, 50));
        EXPECT_LE(AboutLabel()->sizeHint().height(), 50);
        EXPECT_EQ(AboutLabel()->text().count(u'\n'), 2);
    };
    Steps steps = {[] { Control(50002).setFocus(); }};
    for (const Qt::Key key : {Qt::Key_Space, Qt::Key_Return}) {
        AddMenu(steps, kAbout);
        AddMenu(steps, kAbout);
        steps.emplace_back(look);
        steps.emplace_back([key] { QTest::keyClick(Host().windowHandle(), key); });
        steps.emplace_back([] {
            EXPECT_TRUE(g_AboutWindow == nullptr && AboutLabel() == nullptr);
            EXPECT_TRUE(Control(50002).hasFocus());
        });
    }
    AddMenu(steps, kAbout);
    steps.emplace_back([&] { EXPECT_EQ(device.Listing(), Entries{"App/"}); });
    AddMenu(steps, kExit);
    steps.emplace_back([] { ADD_FAILURE() << "the program goes on"; });
    RunDisplayed(device, steps);
    EXPECT_EQ(device.Listing().size(), 2u);
    EXPECT_EQ(g_AboutWindow, nullptr);
}

}  // namespace
