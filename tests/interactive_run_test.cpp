#include "shell/interactive_run.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <regex>
#include <string>
#include <tuple>
#include <vector>

#include "core/application.h"
#include "shell/resources.h"
#include "shell/windows.h"
#include "tests/interactive_program.h"

namespace {

using namespace std::string_literals;
using Texts = std::vector<std::string>;

TEST(InteractiveRun, MakesAndDestroysInItsOrder) {
    InteractiveProgram program;
    EXPECT_EQ(program.Run(), 0);
    Texts calls = program.windows.calls;
    std::erase_if(calls, [](const std::string& call) {
        static const std::regex kKept("(Un|Reg|Create|SHCreate|Move|Destroy).* (Mar|Sys|Dis).*");
        return !std::regex_match(call, kKept);
    });
    EXPECT_EQ(calls, (Texts{
                         "UnregisterClassW Marlowtide Fennelbright",
                         "RegisterClassW Marlowtide Fennelbright",
                         "CreateWindowExW Marlowtide Fennelbright",
                         "SHCreateMenuBar Marlowtide Fennelbright",
                         "MoveWindow Marlowtide Fennelbright",
                         "CreateWindowExW SysTabControl32",
                         "UnregisterClassW DisplayWindow",
                         "RegisterClassW DisplayWindow",
                         "CreateWindowExW DisplayWindow",
                         "DestroyWindow DisplayWindow",
                         "DestroyWindow SysTabControl32",
                         "DestroyWindow Marlowtide Fennelbright",
                     }));
    EXPECT_TRUE(program.windows.windows.empty());
    EXPECT_EQ(program.windows.strayHandles, 0);
    EXPECT_TRUE(g_MenuBar == nullptr && g_MainWindow == nullptr && g_TabBar == nullptr &&
                g_DisplayWindow == nullptr && g_Screens == nullptr && g_Settings == nullptr);
    EXPECT_TRUE(g_Instance == nullptr && !g_Running);
}

TEST(InteractiveRun, TheWindowsHaveTheirPlacesAndTabs) {
    InteractiveProgram program;
    program.Run({[&] {
        const FakeWindow& main = program.windows.At(g_MainWindow->Window());
        EXPECT_EQ(std::tuple(main.text, main.style, main.extendedStyle, main.bounds.bottom),
                  std::tuple(u"Marlowtide Fennelbright", WS_VISIBLE, WS_EX_CAPTIONOKBTN, 294));
        const FakeWindow& tabs = program.windows.At(g_TabBar->Window());
        EXPECT_EQ(std::tuple(tabs.style, tabs.parent, tabs.bounds.bottom),
                  std::tuple(0x54000002u, g_MainWindow->Window(), 268));
        EXPECT_EQ(tabs.entries,
                  (std::vector<std::u16string>{u"Clean Temp Files", u"Pocket IE", u"Registry",
                                               u"System Folders", u"Shortcuts", u"Performance"}));
        const FakeWindow& page = program.windows.At(g_DisplayWindow->Window());
        EXPECT_EQ(
            std::tuple(page.text, page.style, page.parent, page.bounds.left, page.bounds.bottom),
            std::tuple(u"DisplayWindow", 0x50200000u, g_TabBar->Window(), 4, 243));
        g_MenuBar->FitWindow(g_MainWindow->Window());
        EXPECT_EQ(main.bounds.bottom - main.bounds.top, 242);
        // Every window is painted, then shown.
        const Texts& calls = program.windows.calls;
        for (const std::string shown : {"Marlowtide Fennelbright 1", "SysTabControl32 1",
                                        "DisplayWindow 1", "EDIT 50002 0", "BUTTON 50052 0"}) {
            const auto show = std::ranges::find(calls, "ShowWindow " + shown);
            ASSERT_NE(show, calls.end()) << shown;
            EXPECT_EQ(*(show - 1), "UpdateWindow " + shown.substr(0, shown.rfind(' ')));
        }
    }});
}

TEST(InteractiveRun, AFailureIsToldAndTheNextStepFollows) {
    const struct {
        const char* failing;
        const char* box;   // nothing: it is not told
        const char* next;  // a call of the step behind it
    } cases[] = {
        {"CreateWindowExW Marlowtide Fennelbright", "Failed Creating Menu Bar",
         "CreateWindowExW SysTabControl32"},
        {"SHCreateMenuBar Marlowtide Fennelbright", "Failed Creating Menu Bar",
         "ShowWindow Marlowtide Fennelbright 1"},
        {"CreateWindowExW SysTabControl32", "Failed Creating Tab Control",
         "UnregisterClassW DisplayWindow"},
        {"TCM_INSERTITEM 0", "Failed Creating Tab Clean Temp", "TCM_INSERTITEM 1"},
        {"TCM_INSERTITEM 1", "Failed Creating Tab Pocket IE", "TCM_INSERTITEM 2"},
        {"TCM_INSERTITEM 2", "Failed Creating Tab Registry", "TCM_INSERTITEM 3"},
        {"TCM_INSERTITEM 3", "Failed Creating Tab System Folders", "TCM_INSERTITEM 4"},
        {"TCM_INSERTITEM 4", "Failed Creating Tab Shortcuts", "TCM_INSERTITEM 5"},
        {"TCM_INSERTITEM 5", "Failed Creating Tab Performance", "CreateWindowExW DisplayWindow"},
        {"CreateWindowExW DisplayWindow", "Failed Creating Display Window",
         "CreateWindowExW BUTTON 50001"},
        {"CreateWindowExW BUTTON 50001", nullptr, "CreateWindowExW EDIT 50002"},
        {"RegisterClassW DisplayWindow", "Failed Creating Display Window",
         "CreateWindowExW BUTTON 50052"},
    };
    for (const auto& expected : cases) {
        SCOPED_TRACE(expected.failing);
        InteractiveProgram program;
        program.windows.failing = {expected.failing};
        EXPECT_EQ(program.Run(), 0);
        const Texts& calls = program.windows.calls;
        const auto failed = std::ranges::find(calls, expected.failing);
        ASSERT_NE(failed, calls.end());
        EXPECT_NE(std::find(failed, calls.end(), expected.next), calls.end());
        EXPECT_EQ(program.windows.boxes.empty(), expected.box == nullptr);
        if (expected.box != nullptr && !program.windows.boxes.empty()) {
            EXPECT_EQ(program.windows.boxes.front(), std::string("[Error] ") + expected.box);
        }
        EXPECT_EQ(program.windows.strayHandles, 0);
    }
}

TEST(InteractiveRun, WithoutABarTheMainWindowKeepsItsHeight) {
    InteractiveProgram program;
    program.windows.failing = {"SHCreateMenuBar Marlowtide Fennelbright"};
    program.Run({[&] {
        g_MenuBar->FitWindow(g_MainWindow->Window());
        EXPECT_EQ(std::ranges::count(program.windows.calls, "MoveWindow Marlowtide Fennelbright"),
                  0);
        EXPECT_EQ(program.windows.At(g_TabBar->Window()).bounds.bottom, 294);
    }});
}

TEST(InteractiveRun, AQuitMessageEndsNothing) {
    InteractiveProgram program;
    bool wentOn = false;
    program.Run({[&] { program.windows.Post(nullptr, WM_QUIT, 0); }, [&] { wentOn = true; }});
    EXPECT_TRUE(wentOn);
}

// A whole run: a text typed, tabs, scrolling, an Apply, the end.
void Work(InteractiveProgram& program, int failing, LRESULT result) {
    program.Run({[&] {
                     // Whatever failed, the user still acts on what is there.
                     for (auto& [handle, window] : program.windows.windows) {
                         window.check = window.id == 50001 || window.id == 50026 ? 1 : window.check;
                         window.text = window.id == 50002 ? u"\\Temp" : window.text;
                     }
                 },
                 [&] { program.ChooseTab(1); },
                 [&] {
                     program.windows.Post(program.windows.Find(u"DisplayWindow"), WM_VSCROLL,
                                          SB_BOTTOM);
                 },
                 [&] { program.ChooseTab(5); }, [&] { program.Choose(kCommandApplyDeferRestart); }},
                failing, result);
    EXPECT_EQ(program.windows.strayHandles, 0);
    EXPECT_TRUE(g_Screens == nullptr && g_MainWindow == nullptr && !g_Running);
}

TEST(InteractiveRun, NoCallThatFailsBreaksIt) {
    const std::string kSaved = "App/settings.dat=\x01\0\x10\0\x02\0\0\0\\\0T\0\x02\0\0\0"s;
    int calls = 1;
    for (int failing = 0; failing <= calls; ++failing) {
        for (const LRESULT result : {LRESULT{0}, LRESULT{-1}}) {
            SCOPED_TRACE(std::to_string(failing) + ' ' + std::to_string(result));
            InteractiveProgram program({kSaved});
            Work(program, failing, result);
            calls = std::max(calls, program.calls);
        }
    }
}

}  // namespace
