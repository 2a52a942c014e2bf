#include "screens/screens.h"

#include <array>
#include <set>
#include <tuple>

#include "core/application.h"
#include "shell/main_windows.h"
#include "tests/support/control_rows.h"
#include "tests/support/interactive_program.h"

namespace {

TEST(Screens, AControlListKeepsTheOrderOfAppendingAndACopyIsAView) {
    int windows[2] = {};
    CControlList list;
    for (int round = 0; round < 2; ++round) {
        EXPECT_TRUE(list.Count() == 0 && list.First() == nullptr && list.ItemAt(0) == nullptr);
        list.Append(&windows[0]);
        {
            const CControlList view = list;
            list.Append(nullptr);
            EXPECT_EQ(view.Count(), 1u);
            EXPECT_EQ(view.First(), list.First());
        }
        list.Append(&windows[1]);
        std::vector<HWND> walked;
        for (const auto* node = list.First(); node != nullptr; node = node->next) {
            EXPECT_EQ(node->prev == nullptr, walked.empty());
            walked.push_back(node->value);
        }
        EXPECT_EQ(walked, (std::vector<HWND>{&windows[0], nullptr, &windows[1]}));
        EXPECT_TRUE(list.Count() == 3 && list.ItemAt(2) == &windows[1] &&
                    list.ItemAt(3) == nullptr);
        list.Clear();
        list.Clear();
    }
}

// Every control is as its row has it, moved by the scroll position, and shown when its page is.
void ExpectControls(InteractiveProgram& program, UINT shown) {
    const FakeWindow& page = program.windows.At(g_DisplayWindow->Window());
    std::array<UINT, kScreenCount> items{};
    for (const ControlRow& row : kControlRows) {
        const FakeWindow& control = program.Control(row.screen, items.at(row.screen)++);
        const RECT& at = control.bounds;
        EXPECT_EQ(
            std::tuple(control.className, control.text, control.style, at.left,
                       at.top + page.scroll.nPos, at.right - at.left, at.bottom - at.top,
                       control.id, control.parent, control.visible),
            std::tuple(row.kind.className, row.text, row.kind.style, row.x, row.y, row.width,
                       row.kind.height, row.id, g_DisplayWindow->Window(), row.screen == shown));
    }
    EXPECT_EQ(program.windows.windows.size(), std::size(kControlRows) + 4);
}

TEST(Screens, ControlsAreMadeWithTheirFirstContent) {
    using Texts = std::vector<std::u16string>;
    InteractiveProgram program;
    program.Run({[&] {
        ExpectControls(program, 0);
        EXPECT_EQ(program.Control(1, 6).entries, (Texts{u"1024 kb", u"2048 kb", u"3072 kb"}));
        for (const UINT limit : {8U, 10U}) {
            EXPECT_EQ(program.Control(1, limit).entries, (Texts{u"256 kb", u"512 kb", u"1024 kb"}));
        }
        EXPECT_EQ(program.Control(1, 10).position, 0);
        EXPECT_EQ(program.Control(5, 1).highest, 2);
        EXPECT_EQ(program.Control(5, 1).position, 0);
    }});
}

TEST(Screens, ASwitchShowsOnePageFromItsTop) {
    constexpr std::pair<UINT, int> kHighest[] = {{2, -217}, {2, -217}, {5, -115}, {1, -55},
                                                 {3, -123}, {4, -109}, {0, 157}};
    InteractiveProgram program;
    program.Run({[&] {
        FakeWindow& page = program.windows.At(g_DisplayWindow->Window());
        const SCROLLINFO& given = page.scrollGiven;
        for (const auto& [screen, highest] : kHighest) {
            page.scroll.nPos = 40;
            g_Screens->SwitchScreenTo(screen);
            ExpectControls(program, screen);
            EXPECT_EQ(std::tuple(given.fMask, given.nMin, given.nMax, given.nPage, given.nPos),
                      std::tuple(15U, 0, highest, 3U, 0));
        }
    }});
}

TEST(Screens, AnUnknownIndexIsReportedAndTheWorkGoesOn) {
    InteractiveProgram program;
    program.Run({[&] {
        g_Screens->SwitchScreenTo(6);
        ExpectControls(program, 6);
        EXPECT_LT(program.windows.At(g_DisplayWindow->Window()).scrollGiven.nMax, 0);
        g_Screens->SwitchScreenTo(1);
        ExpectControls(program, 1);
        const CControlList first = g_Screens->GetScreenItems(0);
        EXPECT_EQ(g_Screens->GetScreenItems(6).First(), first.First());
        EXPECT_EQ(program.windows.boxes,
                  (std::vector<std::string>{"[Error] CScreen::SwitchScreenTo() Unknown Screen",
                                            "[Error] CScreen::SwitchScreenTo() Unknown Screen",
                                            "[Error] CScreen::GetScreenItems() Unknown Screen"}));
    }});
}

TEST(Screens, AControlWithoutAnActionDoesNothingAndAnUnknownOneIsReported) {
    const std::set<UINT> acting = {50003, 50006, 50011, 50014, 50025, 50034, 50038, 50041, 50044};
    InteractiveProgram program;
    program.Run({[&] {
        for (UINT id = 50001; id <= 50052; ++id) {
            program.windows.uses = 0;
            acting.contains(id) ? void() : g_Screens->ControlCallback(id);
            EXPECT_EQ(program.windows.uses, 0) << id;
        }
        EXPECT_EQ(program.windows.boxes, std::vector<std::string>());
        const UINT unknown[] = {0, IDCANCEL, 50000, 50053, 0x10000 + 50001};
        for (const UINT id : unknown) {
            g_Screens->ControlCallback(id);
        }
        EXPECT_EQ(
            program.windows.boxes,
            std::vector<std::string>(5, "[Error] CScreens::ControlCallback() Unknown control ID"));
    }});
}

}  // namespace
