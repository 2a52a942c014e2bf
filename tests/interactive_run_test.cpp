#include "shell/interactive_run.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <vector>

#include "core/application.h"
#include "shell/resources.h"
#include "shell/windows.h"
#include "tests/interactive_program.h"

namespace {

using namespace std::string_literals;
using Texts = std::vector<std::string>;

// The calls that make, place and destroy windows, those of the controls as one with their number.
Texts Creations(const Texts& calls) {
    const std::set<std::string> operations = {"UnregisterClassW", "RegisterClassW",
                                              "CreateWindowExW",  "SHCreateMenuBar",
                                              "MoveWindow",       "DestroyWindow"};
    const std::set<std::string> windows = {"Marlowtide Fennelbright", "SysTabControl32",
                                           "DisplayWindow"};
    Texts kept;
    int controls = 0;
    for (const std::string& call : calls) {
        const std::size_t space = call.find(' ');
        if (!operations.contains(call.substr(0, space))) {
            continue;
        }
        if (!windows.contains(call.substr(space + 1))) {
            ++controls;
            continue;
        }
        if (controls != 0) {
            kept.push_back(std::to_string(std::exchange(controls, 0)) + " controls");
        }
        kept.push_back(call);
    }
    return kept;
}

TEST(InteractiveRun, MakesAndDestroysInItsOrder) {
    InteractiveProgram program;
    EXPECT_EQ(program.Run(), 0);
    EXPECT_EQ(Creations(program.windows.calls), (Texts{
                                                    "UnregisterClassW Marlowtide Fennelbright",
                                                    "RegisterClassW Marlowtide Fennelbright",
                                                    "CreateWindowExW Marlowtide Fennelbright",
                                                    "SHCreateMenuBar Marlowtide Fennelbright",
                                                    "MoveWindow Marlowtide Fennelbright",
                                                    "CreateWindowExW SysTabControl32",
                                                    "UnregisterClassW DisplayWindow",
                                                    "RegisterClassW DisplayWindow",
                                                    "CreateWindowExW DisplayWindow",
                                                    "110 controls",
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
        EXPECT_EQ(main.text, u"Marlowtide Fennelbright");
        EXPECT_EQ(main.style, WS_VISIBLE);
        EXPECT_EQ(main.extendedStyle, WS_EX_CAPTIONOKBTN);
        EXPECT_EQ(main.bounds.bottom - main.bounds.top, 268);
        const FakeWindow& tabs = program.windows.At(g_TabBar->Window());
        EXPECT_EQ(tabs.style, 0x54000002u);
        EXPECT_EQ(tabs.parent, g_MainWindow->Window());
        EXPECT_EQ(tabs.bounds.bottom, 268);
        EXPECT_EQ(tabs.entries,
                  (std::vector<std::u16string>{u"Clean Temp Files", u"Pocket IE", u"Registry",
                                               u"System Folders", u"Shortcuts", u"Performance"}));
        const FakeWindow& page = program.windows.At(g_DisplayWindow->Window());
        EXPECT_EQ(page.text, u"DisplayWindow");
        EXPECT_EQ(page.style, 0x50200000u);
        EXPECT_EQ(page.parent, g_TabBar->Window());
        EXPECT_EQ(page.bounds.left, 4);
        EXPECT_EQ(page.bounds.bottom, 243);
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
        InChild(expected.failing, [&] {
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
        });
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
            InChild(std::to_string(failing) + ' ' + std::to_string(result), [&] {
                InteractiveProgram program({kSaved});
                Work(program, failing, result);
            });
        }
        if (failing == 0) {
            InteractiveProgram program({kSaved});
            Work(program, 0, 0);
            calls = program.calls;
        }
    }
}

}  // namespace
