// The lists of the pages and the folder browser, on a display that nobody sees.

#include <QLineEdit>
#include <QListWidget>
#include <QTreeWidget>
#include <filesystem>
#include <string>

#include "tests/apply_device.h"
#include "tests/display_fixture.h"
#include "tests/displayed_run.h"

namespace {

const auto kApply = {Qt::Key_F10, Qt::Key_Right, Qt::Key_Up, Qt::Key_Return};
const auto kExit = {Qt::Key_F10, Qt::Key_Down, Qt::Key_Return};

std::string BoxText(int id) {
    return dynamic_cast<QLineEdit&>(Control(id)).text().toStdString();
}

void NextTab() {
    QTest::keyClick(&Host(), Qt::Key_Tab, Qt::ControlModifier);
}

Steps Taps(std::initializer_list<int> ids) {
    Steps steps;
    for (const int id : ids) {
        steps.emplace_back([id] { Click(Control(id)); });
    }
    return steps;
}

QListWidget& List(int id) {
    return dynamic_cast<QListWidget&>(Control(id));
}

void ClickRow(int id, const char* text) {
    QListWidget& list = List(id);
    const auto found = list.findItems(QString::fromLatin1(text), Qt::MatchExactly);
    ASSERT_EQ(found.size(), 1) << text;
    list.scrollToItem(found.front());
    Click(*list.viewport(), list.visualItemRect(found.front()).center());
}

QTreeWidget* Tree() {
    return Host().findChild<QTreeWidget*>();
}

// Selects a folder in the browser and opens it.
void ClickFolder(const char* name) {
    ASSERT_NE(Tree(), nullptr);
    const auto found =
        Tree()->findItems(QString::fromLatin1(name), Qt::MatchExactly | Qt::MatchRecursive);
    ASSERT_EQ(found.size(), 1) << name;
    Click(*Tree()->viewport(), Tree()->visualItemRect(found.front()).center());
    found.front()->isExpanded() ? void() : QTest::keyClick(Tree(), Qt::Key_Right);
}

class DisplayedLists : public testing::Test {
  protected:
    DisplayedLists() {
        device_.Make({std::string("App/settings.dat=\0\0\0\0", 21), "Games/Cache/a=12345",
                      "Games/Cache/sub/b=1", "Games/keep=1"});
        WriteFile(device_.path() + "/registry.reg", kQuietTweaks);
    }

    bool Has(const char* path) const { return std::filesystem::exists(device_.files() + path); }

    // "Defer Restart", and what it must have told.
    void AddApply(Steps& steps, const char* bytes) {
        AddMenu(steps, kApply);
        boxes_.push_back("[Cleaning Finished] " + std::string(bytes) + " Bytes Cleaned");
    }

    TemporaryDevice device_;
    Entries boxes_;
};

TEST_F(DisplayedLists, AChosenFolderIsCleaned) {
    Steps steps = Taps({50003});
    for (const char* const folder : {"Games", "Cache"}) {
        steps.emplace_back([folder] { ClickFolder(folder); });
    }
    steps.emplace_back([] {
        const QWidget& dialog = *Tree()->parentWidget();
        EXPECT_EQ(dialog.geometry(), QRect(0, 26, 240, 268));
        EXPECT_EQ(Tree()->geometry(), QRect(10, 10, 220, 228));
        EXPECT_EQ(Control(60001).geometry(), QRect(50, 243, 60, 20));
        EXPECT_EQ(Control(60002).geometry(), QRect(130, 243, 60, 20));
        Click(Control(60001));
    });
    steps.emplace_back([] { EXPECT_EQ(BoxText(50002), "\\Games\\Cache\\"); });
    steps.emplace_back([] { Click(Control(50001)); });
    AddApply(steps, "6");
    steps.emplace_back([this] {
        EXPECT_TRUE(Has("/Games/keep") && Has("/Games/Cache/sub"));
        EXPECT_FALSE(Has("/Games/Cache/a") || Has("/Games/Cache/sub/b"));
    });
    EXPECT_EQ(RunDisplayed(device_, steps), boxes_);
}

TEST_F(DisplayedLists, WhatIsSelectedGoesAndNothingElse) {
    device_.Make({"x/Temp/a=123", "MyTemp/b=4567", "l/one.tmp=12", "l/two.tmp=345",
                  "Windows/StartUp/a.lnk=1#a", "Windows/StartUp/b.lnk=1#b"});
    Steps steps = Taps({50015, 50011, 50014});
    steps.emplace_back([] { ClickRow(50012, "\\x\\Temp\\"); });
    steps.emplace_back([] { ClickRow(50020, "\\l\\two.tmp"); });
    steps.insert(steps.end(), 4, NextTab);
    steps.emplace_back([] { ClickRow(50047, "a.lnk"); });
    AddApply(steps, "6");
    AddApply(steps, "0");
    steps.emplace_back([this] { EXPECT_TRUE(Has("/Windows/StartUp/a.lnk")); });
    steps.emplace_back([] { Click(Control(50046)); });
    AddApply(steps, "3");
    AddApply(steps, "0");
    EXPECT_EQ(RunDisplayed(device_, steps), boxes_);
    Entries left = device_.Listing();
    std::erase_if(left, [](const std::string& entry) { return entry.starts_with("App/"); });
    EXPECT_EQ(left, (Entries{"Games/", "Games/Cache/", "Games/Cache/a=12345", "Games/Cache/sub/",
                             "Games/Cache/sub/b=1", "Games/keep=1", "MyTemp/", "MyTemp/b=4567",
                             "Windows/", "Windows/StartUp/", "Windows/StartUp/b.lnk=1#b", "l/",
                             "l/one.tmp=12", "x/", "x/Temp/"}));
}

TEST_F(DisplayedLists, OfThreeThousandSelectedEntriesTheFirst1024Go) {
    for (int file = 1000; file < 4000; ++file) {
        device_.Make({"t/" + std::to_string(file) + ".tmp=1"});
    }
    Steps steps = Taps({50015, 50014});
    steps.emplace_back([] {
        List(50020).selectAll();
        EXPECT_EQ(List(50020).selectedItems().size(), 3000);
    });
    AddApply(steps, "1024");
    EXPECT_EQ(RunDisplayed(device_, steps), boxes_);
    EXPECT_FALSE(Has("/t/1000.tmp") || Has("/t/2023.tmp"));
    EXPECT_TRUE(Has("/t/2024.tmp") && Has("/t/3999.tmp"));
}

TEST_F(DisplayedLists, TheBrowserServesItsBoxHoweverItEnds) {
    const Steps browse = Taps({50003});
    const Steps ok = Taps({60001});
    const Steps cancel = Taps({60002});
    const Steps captionOk = {[] { Click(*Host().findChild<QWidget*>("captionOk")); }, cancel[0]};
    const Steps close = {[] { Host().close(); }};
    const Steps vanish = {browse[0],
                          [this] { std::filesystem::remove_all(device_.files() + "/Games"); }};
    // Before the program looks at the first.
    const Steps otherBox = {[] { Click(Control(50003)), Click(Control(50006)); }};
    const Steps otherPage = {[] { Click(Control(50003)), NextTab(); }};
    Steps apply;
    AddMenu(apply, kApply);
    apply.push_back(cancel[0]);
    Steps exit;
    AddMenu(exit, kExit);
    const struct {
        const char* what;
        const Steps& opening;
        const char* folder;
        const Steps& ending;
        std::string texts;  // of the first two boxes; empty: the program ends
    } cases[] = {
        {"OK without a choice", browse, nullptr, ok, "|b"},
        {"OK on the root", browse, "\\", ok, "\\|b"},
        {"Cancel", browse, "Games", cancel, "a|b"},
        {"its caption, which does nothing", browse, "Games", captionOk, "a|b"},
        {"opened for another box", otherBox, "Games", ok, "a|\\Games\\"},
        {"another page", otherPage, "Games", ok, "\\Games\\|b"},
        {"Apply", browse, "Games", apply, "a|b"},
        {"Exit", browse, "Games", exit, ""},
        {"the window", browse, "Games", close, ""},
        {"a folder that has gone", vanish, "Games", ok, "\\Games\\|b"},
    };
    const auto texts = [] { return BoxText(50002) + '|' + BoxText(50005); };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.what);
        std::string seen;
        Steps steps = {[] { QTest::keyClicks(&Control(50002), QStringLiteral("a")); },
                       [] { QTest::keyClicks(&Control(50005), QStringLiteral("b")); }};
        steps.insert(steps.end(), each.opening.begin(), each.opening.end());
        steps.emplace_back([&] {
            each.folder == nullptr ? void() : ClickFolder(each.folder);
            EXPECT_EQ(texts(), "a|b");
        });
        steps.insert(steps.end(), each.ending.begin(), each.ending.end());
        steps.emplace_back([&] {
            EXPECT_EQ(Tree(), nullptr);
            seen = texts();
        });
        RunDisplayed(device_, steps);
        EXPECT_EQ(seen, each.texts);
    }
}

}  // namespace
