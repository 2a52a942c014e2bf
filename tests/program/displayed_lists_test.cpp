// The lists of the pages and the folder browser, on an offscreen display.

#include <QLineEdit>
#include <QListView>
#include <QTreeWidget>
#include <algorithm>
#include <filesystem>

#include "tests/support/apply_device.h"
#include "tests/support/display_fixture.h"
#include "tests/support/displayed_run.h"

namespace {

std::string BoxTexts() {
    const auto text = [](int id) { return dynamic_cast<QLineEdit&>(Control(id)).text(); };
    return (text(50002) + '|' + text(50005)).toStdString();
}

QListView& List(int id) {
    return dynamic_cast<QListView&>(Control(id));
}

QTreeWidget* Tree() {
    return Host().findChild<QTreeWidget*>();
}

auto Select(int id, const char* text) {
    return [id, text] {
        const auto found = List(id).model()->match(List(id).model()->index(0, 0), Qt::DisplayRole,
                                                   QString::fromLatin1(text), 1, Qt::MatchExactly);
        ASSERT_EQ(found.size(), 1) << text;
        Click(*List(id).viewport(), List(id).visualRect(found[0]).center());
    };
}

// In the browser.
auto Open(const char* name) {
    return [name] {
        const auto found =
            Tree()->findItems(QString::fromLatin1(name), Qt::MatchExactly | Qt::MatchRecursive);
        ASSERT_EQ(found.size(), 1) << name;
        Click(*Tree()->viewport(), Tree()->visualItemRect(found[0]).center());
        found[0]->isExpanded() ? void() : QTest::keyClick(Tree(), Qt::Key_Right);
    };
}

void Apply() {
    for (const Qt::Key key : {Qt::Key_F10, Qt::Key_Right, Qt::Key_Up, Qt::Key_Return}) {
        PressKey(key);
    }
}

class DisplayedLists : public testing::Test {
  protected:
    // Runs the program and returns what has gone but for the settings, which keep the ticks.
    Entries Lost(const Steps& steps, std::initializer_list<const char*> bytes) {
        Entries boxes;
        for (const char* const each : bytes) {
            boxes.push_back("[Cleaning Finished] " + std::string(each) + " Bytes Cleaned");
        }
        const Entries before = device_.Listing();
        EXPECT_EQ(RunDisplayed(device_, steps), boxes);
        const Entries after = device_.Listing();
        Entries lost;
        std::ranges::set_difference(before, after, std::back_inserter(lost));
        std::erase_if(lost, [](const auto& entry) { return entry.starts_with("App/"); });
        return lost;
    }

    TemporaryDevice device_{{std::string("App/settings.dat=\0\0\0\0", 21),
                             std::string("../registry.reg=") + kQuietTweaks, "Games/Cache/a=12345",
                             "Games/Cache/sub/b=1", "Games/keep=1"}};
};

TEST_F(DisplayedLists, AChosenFolderIsCleaned) {
    const auto look = [] {
        EXPECT_EQ(Tree()->parentWidget()->geometry(), QRect(0, 26, 240, 268));
        EXPECT_EQ(Tree()->geometry(), QRect(10, 10, 220, 228));
        EXPECT_TRUE(Tree()->hasFocus());
        EXPECT_EQ(Control(60001).geometry(), QRect(50, 243, 60, 20));
        EXPECT_EQ(Control(60002).geometry(), QRect(130, 243, 60, 20));
    };
    const auto read = [] {
        EXPECT_EQ(BoxTexts(), "\\Games\\Cache\\|");
        EXPECT_TRUE(Control(50003).hasFocus());
    };
    EXPECT_EQ(
        Lost({Tap(50003), Open("Games"), Open("Cache"), look, Tap(60001), read, Tap(50001), Apply},
             {"6"}),
        (Entries{"Games/Cache/a=12345", "Games/Cache/sub/b=1"}));
}

TEST_F(DisplayedLists, OnlySelectedEntriesAreDeleted) {
    device_.Make({"x/Temp/a=123", "MyTemp/b=4567", "l/one.tmp=12", "l/two.tmp=345",
                  "Windows/StartUp/a.lnk=1#a", "Windows/StartUp/b.lnk=1#b"});
    EXPECT_EQ(Lost({Tap(50015), Tap(50011), Tap(50014), Select(50012, "\\x\\Temp\\"),
                    Select(50020, "\\l\\two.tmp"), NextTab, NextTab, NextTab, NextTab,
                    Select(50047, "a.lnk"), Apply, Apply, Tap(50046), Apply, Apply},
                   {"6", "0", "3", "0"}),
              (Entries{"Windows/StartUp/a.lnk=1#a", "l/two.tmp=345", "x/Temp/a=123"}));
}

TEST_F(DisplayedLists, OfThreeThousandSelectedEntriesTheFirst1024Go) {
    for (int file = 1000; file < 4000; ++file) {
        device_.Make({"t/" + std::to_string(file) + ".tmp=1"});
    }
    const Entries lost =
        Lost({Tap(50015), Tap(50014), [] { List(50020).selectAll(); }, Apply}, {"1024"});
    EXPECT_EQ(lost.size(), 1024U);
    EXPECT_EQ(lost.back(), "t/2023.tmp=1");
}

TEST_F(DisplayedLists, TheBrowserFillsItsBoxByOkAlone) {
    // Two things are done before the program looks at the first.
    const auto another = [] { Click(Control(50003)), Click(Control(50006)); };
    const auto nextPage = [] { Click(Control(50003)), NextTab(); };
    const auto vanish = [this] { std::filesystem::remove_all(device_.files() + "/Games"); };
    const auto menu = [] { PressKey(Qt::Key_F10); };
    const auto exit = [] { PressKey(Qt::Key_Down), PressKey(Qt::Key_Return); };
    // The texts are those of the first two boxes at the end; none: the program ends.
    const std::pair<Steps, std::string> cases[] = {
        {{Tap(50003), Tap(60001)}, "|b"},
        {{Tap(50003), Open("\\"), Tap(60001)}, "\\|b"},
        {{Tap(50003), Open("Games"), Tap(60002)}, "a|b"},
        {{another, Open("Games"), Tap(60001)}, "a|\\Games\\"},
        {{nextPage, Open("Games"), Tap(60001)}, "\\Games\\|b"},
        {{Tap(50003), Open("Games"), Apply, Tap(60002)}, "a|b"},
        {{Tap(50003), Open("Games"), menu, exit}, ""},
        {{Tap(50003), Open("Games"), [] { Host().close(); }}, ""},
        {{Tap(50003), vanish, Open("Games"), Tap(60001)}, "\\Games\\|b"},
    };
    for (const auto& [browsing, texts] : cases) {
        SCOPED_TRACE(texts);
        std::string seen;
        Steps steps = {[] { QTest::keyClicks(&Control(50002), QStringLiteral("a")); },
                       [] { QTest::keyClicks(&Control(50005), QStringLiteral("b")); }};
        steps.insert(steps.end(), browsing.begin(), browsing.end());
        steps.emplace_back([&] { seen = Tree() == nullptr ? BoxTexts() : "the browser is open"; });
        RunDisplayed(device_, steps);
        EXPECT_EQ(seen, texts);
    }
}

}  // namespace
