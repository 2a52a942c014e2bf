#include "shell/window_procedure.h"

#include <algorithm>
#include <optional>
#include <tuple>

#include "core/application.h"
#include "engine/apply_sequence.h"
#include "screens/screens.h"
#include "shell/main_windows.h"
#include "shell/resources.h"
#include "tests/support/interactive_program.h"

namespace {

using namespace std::string_literals;
using Texts = std::vector<std::string>;

TEST(Shell, EveryMessageHasItsResult) {
    NMHDR other = {nullptr, 0, static_cast<UINT>(-12)};
    const std::tuple<UINT, WPARAM, LPARAM, bool> cases[] = {
        {WM_LBUTTONUP, 0, 0, false},   {WM_VSCROLL, SB_ENDSCROLL, 0, false},
        {WM_COMMAND, 50001, 0, false}, {WM_COMMAND, MAKELONG(50002, EN_CHANGE), 0, false},
        {WM_COMMAND, 50052, 0, false}, {WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&other), true},
        {WM_NOTIFY, 0, 0, true},       {WM_LBUTTONDOWN, 0, 0, true},
        {WM_CLOSE, 0, 0, true},        {WM_HSCROLL, 0, 0, true},
    };
    InteractiveProgram program;
    program.windows.defaultResult = 77;
    program.Run({[&] {
        for (const auto& [message, wParam, lParam, passedOn] : cases) {
            EXPECT_EQ(MainWindowProc(g_DisplayWindow->Window(), message, wParam, lParam),
                      passedOn ? 77 : 1);
        }
        EXPECT_TRUE(g_Running);
        EXPECT_EQ(program.windows.boxes, Texts{});
        EXPECT_EQ(program.SettingsFile(), "");
    }});
}

TEST(Shell, ScrollCodesMoveThePage) {
    const struct {
        WORD code, thumb;
        int position, newPosition;
        const char* moved;  // nothing: the page stays where it is
        int highest = 155;
        UINT page = 3;
    } cases[] = {{SB_LINEUP, 0, 0, 0, ""},
                 {SB_LINEUP, 0, 1, 0, "3"},
                 {SB_LINEUP, 0, 30, 27, "3"},
                 {SB_LINEDOWN, 0, 0, 3, "-3"},
                 {SB_LINEDOWN, 0, 152, 155, "-3"},
                 {SB_LINEDOWN, 0, 153, 153, ""},
                 {SB_LINEDOWN, 0, 154, 155, "-3", 155, 0},
                 {SB_LINEDOWN, 0, 0, 0, "", 0},
                 {SB_PAGEUP, 0, 30, 27, "3"},
                 {SB_PAGEUP, 0, 0, 0, "3"},
                 {SB_PAGEDOWN, 0, 30, 37, "-7", 155, 7},
                 {SB_THUMBPOSITION, 100, 30, 100, "-70"},
                 {SB_THUMBPOSITION, 0xFFFF, 30, 155, "-65505"},
                 {SB_THUMBTRACK, 100, 30, 30, ""},
                 {SB_TOP, 0, 30, 0, "30"},
                 {SB_BOTTOM, 0, 30, 155, "-125"},
                 {SB_ENDSCROLL, 0, 30, 30, ""},
                 {99, 0, 30, 30, ""}};
    InteractiveProgram program;
    program.Run({[&] {
        FakeWindow& page = program.windows.At(g_DisplayWindow->Window());
        for (const auto& expected : cases) {
            page.scroll = {28, SIF_ALL, 0, expected.highest, expected.page, expected.position, 0};
            program.windows.calls.clear();
            MainWindowProc(g_DisplayWindow->Window(), WM_VSCROLL,
                           MAKELONG(expected.code, expected.thumb), 0);
            Texts calls = {"SetScrollInfo DisplayWindow"};
            if (*expected.moved != '\0') {
                calls.insert(calls.begin(),
                             std::string("ScrollWindowEx DisplayWindow ") + expected.moved);
            }
            EXPECT_EQ(program.windows.calls, calls) << expected.code << ' ' << expected.position;
            EXPECT_EQ(page.scroll.nPos, expected.newPosition) << expected.code;
        }
    }});
}

TEST(Shell, ATabWithoutScreenIsReportedAndChangesNothing) {
    InteractiveProgram program;
    program.windows.defaultResult = 77;
    program.Run({[&] {
        for (const int tab : {-1, 6}) {
            program.windows.boxes.clear();
            EXPECT_EQ(program.ChooseTab(tab), 77);
            EXPECT_EQ(program.ChooseTab(0), 77);
            EXPECT_EQ(program.windows.boxes, (Texts{"[Error] TCN_SELCHANGE Unknown Tab Index",
                                                    "[Error] TCN_SELCHANGING Unknown Tab Index"}));
            EXPECT_TRUE(program.Control(0, 0).visible);
        }
    }});
}

TEST(Shell, EndingCommandsSaveAndEndTheLoopAndAQuitMessageDoesNot) {
    for (const WORD command : {kCommandExit, WORD{IDOK}, WORD{0}}) {
        InteractiveProgram program;
        bool wentOn = false;
        program.Run({[&] {
                         command == 0 ? program.windows.Post(nullptr, WM_QUIT, 0)
                                      : program.Choose(command);
                     },
                     [&] { wentOn = true; }});
        EXPECT_EQ(wentOn, command == 0);
        EXPECT_EQ(program.SettingsFile(), "\0\0\x80\0"s);
    }
}

TEST(Shell, ApplyReportsWhatItFreedAndDecidesAboutTheRestart) {
    const Texts freed = {"[Cleaning Finished] 5 Bytes Cleaned"};
    const Texts required = {freed[0],
                            "[Restart Required] Some settings will not take effect until the "
                            "device has been restarted"};
    const struct {
        WORD command;
        bool ticked;  // "Disable window animation", which the device has switched on
        Texts boxes;
        int restarts;
        std::string saved;  // by the Apply
    } cases[] = {{kCommandApplyAllowRestart, false, freed, 0, ""},
                 {kCommandApplyAllowRestart, true, freed, 1, "\x04\0\x80\0"s},
                 {kCommandApplyDeferRestart, false, freed, 0, ""},
                 {kCommandApplyDeferRestart, true, required, 0, ""}};
    for (const auto& expected : cases) {
        SCOPED_TRACE(std::to_string(expected.command) + (expected.ticked ? " ticked" : ""));
        InteractiveProgram program({"Temp/a=12345"});
        WriteFile(program.device.registry(), kQuietTweaks);
        std::optional<std::string> saved;
        program.Run({[&] {
                         program.Control(0, 6).check = 1;
                         program.Control(5, 7).check = expected.ticked ? 1 : 0;
                         program.Choose(expected.command);
                     },
                     [&] { saved = program.SettingsFile(); }});
        EXPECT_EQ(program.windows.boxes, expected.boxes);
        EXPECT_EQ(BytesCleaned, 0u);
        EXPECT_EQ(program.device.Listing().back(), "Temp/");
        EXPECT_EQ(program.restarts, expected.restarts);
        EXPECT_EQ(saved.value_or(program.SettingsFile()), expected.saved);
    }
}

TEST(Shell, MenuAndIconAreFoundByTheirNumbers) {
    EXPECT_EQ(FindMenuResource(102), nullptr);
    EXPECT_EQ(FindIconResource(101), nullptr);
    std::u16string menu;
    for (const MenuPopup& popup : FindMenuResource(101)->popups) {
        menu += popup.text;
        for (const MenuItem& item : popup.items) {
            menu.append(u",").append(item.text).push_back(static_cast<WCHAR>(item.command));
        }
        menu += u';';
    }
    EXPECT_EQ(menu, std::u16string(u"Fennelbright,Exit\x9C44;Apply,Allow Restart\x9C46,"
                                   "Defer Restart\x9C47;Power,Off\x9C48,Soft Reset\x9C49,"
                                   "Hard Reset\x9C4D;Help,Index\xE142,About\x9C4B;"));
    EXPECT_EQ(FindIconResource(102)->pixels.size(), 256u);
}

TEST(Shell, TheWindowsHaveTheirPlacesAndTabs) {
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

TEST(Shell, AFailureIsReportedAndTheNextStepFollows) {
    const std::pair<std::string, std::string> cases[] = {
        {"CreateWindowExW Marlowtide Fennelbright", "Menu Bar"},
        {"SHCreateMenuBar Marlowtide Fennelbright", "Menu Bar"},
        {"CreateWindowExW SysTabControl32", "Tab Control"},
        {"TCM_INSERTITEM 0", "Tab Clean Temp"},
        {"TCM_INSERTITEM 1", "Tab Pocket IE"},
        {"TCM_INSERTITEM 2", "Tab Registry"},
        {"TCM_INSERTITEM 3", "Tab System Folders"},
        {"TCM_INSERTITEM 4", "Tab Shortcuts"},
        {"TCM_INSERTITEM 5", "Tab Performance"},
        {"CreateWindowExW DisplayWindow", "Display Window"},
        {"RegisterClassW DisplayWindow", "Display Window"},
        {"CreateWindowExW BUTTON 50001", ""},
    };
    for (const auto& [failing, missing] : cases) {
        SCOPED_TRACE(failing);
        InteractiveProgram program;
        program.windows.failing = {failing};
        EXPECT_EQ(program.Run({[] { g_MenuBar->FitWindow(g_MainWindow->Window()); }}), 0);
        EXPECT_EQ(std::ranges::count(program.windows.calls, failing), 1);
        EXPECT_EQ(std::ranges::count(program.windows.calls, "CreateWindowExW BUTTON 50052"), 1);
        EXPECT_EQ(std::ranges::count(program.windows.calls, "MoveWindow Marlowtide Fennelbright"),
                  missing == "Menu Bar" ? 0 : 2)
            << "without a bar the main window keeps its height";
        const Texts& boxes = program.windows.boxes;
        EXPECT_EQ(boxes.empty() ? "" : boxes[0],
                  missing.empty() ? "" : "[Error] Failed Creating " + missing);
        EXPECT_EQ(program.windows.strayHandles, 0);
    }
}

// A whole run: a text typed, tabs, scrolling, an Apply, the end.
TEST(Shell, AFailureOfAnyCallLeavesNoStrayHandleAndNoObject) {
    int uses = 1;
    for (int failing = 0; failing <= uses; ++failing) {
        for (const LRESULT result : {LRESULT{0}, LRESULT{-1}}) {
            SCOPED_TRACE(std::to_string(failing) + ' ' + std::to_string(result));
            InteractiveProgram program(
                {"App/settings.dat=\x01\0\x10\0\x02\0\0\0\\\0T\0\x02\0\0\0"s});
            FakeWindows& windows = program.windows;
            windows.failingUse = failing;
            windows.failure = result;
            program.Run({[&] {
                             // Whatever failed, the user still acts on what is there.
                             for (auto& [handle, window] : windows.windows) {
                                 window.check =
                                     window.id == 50001 || window.id == 50026 ? 1 : window.check;
                                 window.text = window.id == 50002 ? u"\\Temp" : window.text;
                             }
                         },
                         [&] { program.ChooseTab(1); },
                         [&] { windows.Post(g_DisplayWindow->Window(), WM_VSCROLL, SB_BOTTOM); },
                         [&] { program.ChooseTab(5); },
                         [&] { program.Choose(kCommandApplyDeferRestart); }});
            EXPECT_EQ(windows.strayHandles, 0);
            EXPECT_TRUE(failing > 0 || windows.windows.empty());
            EXPECT_TRUE(g_MenuBar == nullptr && g_MainWindow == nullptr && g_TabBar == nullptr &&
                        g_DisplayWindow == nullptr && g_Screens == nullptr &&
                        g_Settings == nullptr && g_Instance == nullptr && !g_Running);
            uses = std::max(uses, failing == 0 ? windows.uses : 0);
        }
    }
}

}  // namespace
