#include "shell/window_procedure.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "core/application.h"
#include "engine/apply_sequence.h"
#include "screens/screens.h"
#include "shell/resources.h"
#include "shell/windows.h"
#include "tests/interactive_program.h"

namespace {

using Texts = std::vector<std::string>;

TEST(WindowProcedure, EveryMessageHasItsResult) {
    NMHDR other = {nullptr, 0, static_cast<UINT>(-12)};
    const struct {
        UINT message;
        WPARAM wParam;
        LPARAM lParam;
        bool passedOn;
    } cases[] = {
        {WM_LBUTTONUP, 0, 0, false},      {WM_VSCROLL, SB_ENDSCROLL, 0, false},
        {WM_COMMAND, 50001, 0, false},    {WM_COMMAND, MAKELONG(50002, EN_CHANGE), 0, false},
        {WM_COMMAND, IDCANCEL, 0, false}, {WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&other), true},
        {WM_NOTIFY, 0, 0, true},          {WM_LBUTTONDOWN, 0, 0, true},
        {WM_CLOSE, 0, 0, true},           {WM_HSCROLL, 0, 0, true},
    };
    InteractiveProgram program;
    program.Run({[&] {
        for (const auto& expected : cases) {
            program.windows.calls.clear();
            const HWND window = g_DisplayWindow->Window();
            EXPECT_EQ(MainWindowProc(window, expected.message, expected.wParam, expected.lParam),
                      expected.passedOn ? FakeWindows::kDefaultResult : 1);
            const std::string call = "DefWindowProcW DisplayWindow ";
            EXPECT_EQ(
                std::ranges::count(program.windows.calls, call + std::to_string(expected.message)),
                expected.passedOn ? 1 : 0);
        }
        EXPECT_TRUE(g_Running);
        EXPECT_EQ(program.windows.boxes, Texts{});
        EXPECT_EQ(program.SettingsFile(), "");
    }});
}

TEST(WindowProcedure, ScrollCodesMoveThePage) {
    const struct {
        WORD code;
        WORD thumb;
        int position;
        int highest;
        UINT page;
        int newPosition;
        const char* moved;  // nothing: the page stays where it is
    } cases[] = {
        {SB_LINEUP, 0, 0, 155, 3, 0, ""},
        {SB_LINEUP, 0, 1, 155, 3, 0, "3"},
        {SB_LINEUP, 0, 30, 155, 3, 27, "3"},
        {SB_LINEDOWN, 0, 0, 155, 3, 3, "-3"},
        {SB_LINEDOWN, 0, 152, 155, 3, 155, "-3"},
        {SB_LINEDOWN, 0, 153, 155, 3, 153, ""},
        {SB_LINEDOWN, 0, 154, 155, 0, 155, "-3"},
        {SB_LINEDOWN, 0, 0, -217, 3, 0, ""},
        {SB_PAGEUP, 0, 30, 155, 3, 27, "3"},
        {SB_PAGEUP, 0, 0, 155, 3, 0, "3"},
        {SB_PAGEDOWN, 0, 30, 155, 7, 37, "-7"},
        {SB_THUMBPOSITION, 100, 30, 155, 3, 100, "-70"},
        {SB_THUMBPOSITION, 0xFFFF, 30, 155, 3, 155, "-65505"},
        {SB_THUMBTRACK, 100, 30, 155, 3, 30, ""},
        {SB_TOP, 0, 30, 155, 3, 0, "30"},
        {SB_BOTTOM, 0, 30, 155, 3, 155, "-125"},
        {SB_ENDSCROLL, 0, 30, 155, 3, 30, ""},
        {99, 0, 30, 155, 3, 30, ""},
    };
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

TEST(WindowProcedure, ATabWithoutScreenIsToldAndChangesNothing) {
    InteractiveProgram program;
    program.Run({[&] {
        for (const int tab : {-1, 6}) {
            program.windows.boxes.clear();
            EXPECT_EQ(program.ChooseTab(tab), FakeWindows::kDefaultResult);
            EXPECT_EQ(program.ChooseTab(0), FakeWindows::kDefaultResult);
            EXPECT_EQ(program.windows.boxes, (Texts{"[Error] TCN_SELCHANGE Unknown Tab Index",
                                                    "[Error] TCN_SELCHANGING Unknown Tab Index"}));
            EXPECT_TRUE(program.Control(0, 0).visible);
        }
    }});
}

TEST(WindowProcedure, EndingCommandsSaveAndEndTheLoop) {
    for (const WORD command : {kCommandExit, static_cast<WORD>(IDOK)}) {
        InteractiveProgram program;
        program.Run(
            {[&] { program.Choose(command); }, [&] { ADD_FAILURE() << "the loop went on"; }});
        EXPECT_EQ(program.SettingsFile(), std::string("\0\0\x80\0", 4));
    }
}

TEST(WindowProcedure, ApplyTellsWhatItFreedAndDecidesAboutTheRestart) {
    const std::string freed = "[Cleaning Finished] 5 Bytes Cleaned";
    const std::string required =
        "[Restart Required] Some settings will not take effect until the device has been "
        "restarted";
    const struct {
        WORD command;
        bool ticked;  // "Disable window animation", which the device has switched on
        Texts boxes;
        int restarts = 0;
    } cases[] = {
        {kCommandApplyAllowRestart, false, {freed}},
        {kCommandApplyAllowRestart, true, {freed}, 1},
        {kCommandApplyDeferRestart, false, {freed}},
        {kCommandApplyDeferRestart, true, {freed, required}},
    };
    for (const auto& expected : cases) {
        SCOPED_TRACE(std::to_string(expected.command) + (expected.ticked ? " ticked" : ""));
        InteractiveProgram program({"Temp/a=12345"});
        WriteFile(program.device.path() + "/registry.reg", kQuietTweaks);
        std::string saved;
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
        EXPECT_EQ(program.restarts == 0 ? saved : program.SettingsFile(),
                  program.restarts == 0 ? "" : std::string("\x04\0\x80\0", 4));
    }
}

TEST(Resources, MenuAndIconAreFoundByTheirNumbers) {
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

}  // namespace
