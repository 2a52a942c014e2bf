#include "settings/control_settings.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <string>

#include "core/application.h"
#include "core/options.h"
#include "settings/settings_file.h"
#include "tests/interactive_program.h"
#include "tests/settings_bytes.h"

namespace {

using namespace std::string_literals;

// All options: eight texts, four positions.
std::string Everything() {
    std::string bytes = Number(0x1FFFFFF);
    for (const WCHAR* const text :
         {u"\\1", u"\\22", u"log", u"", u"\\5", u"\\6\\", u"\\7 7", u"\\"}) {
        bytes += Record(text);
    }
    return bytes + Number(2) + Number(1) + Number(0) + Number(2);
}

// What a run that is ended at once reads and writes.
TEST(ControlSettings, WhatIsReadComesBack) {
    const std::string worked = "\x01\x08\0\0\x02\0\0\0\\\0A\0\x01\0\0\0"s;
    const std::string longText = Number(OPT_MOVE_FONTS) + Record(std::u16string(1023, u'\xFFFD'));
    const struct {
        const char* name;
        std::string before;
        std::string after;
    } cases[] = {
        {"worked example", worked, worked},
        {"all options", Everything(), Everything()},
        {"none", Number(0), Number(0)},
        {"no bytes", "", Number(0)},
        {"longest text", longText, longText},
        {"bits of no option", Number(0xFE000004), Number(4)},
        {"all bits", Number(0xFFFFFFFF) + Everything().substr(4), Everything()},
        {"empty text", Number(OPT_CLEAN_USER2) + Record(u""),
         Number(OPT_CLEAN_USER2) + Record(u"")},
        {"cut in a text", Number(OPT_CLEAN_USER1) + "\x02\0\0\0\\\0"s,
         Number(OPT_CLEAN_USER1) + Record(u"")},
        {"position of no choice", Number(OPT_LIMIT_IE_CACHE) + Number(7),
         Number(OPT_LIMIT_IE_CACHE) + Number(0)},
    };
    for (const auto& expected : cases) {
        InChild(expected.name, [&] {
            InteractiveProgram program({"App/settings.dat=" + expected.before});
            program.Run({[&] {
                EXPECT_EQ(program.Control(4, 1).check, 0);
                for (const Option& option : AllOptions()) {
                    EXPECT_TRUE(option.text == nullptr || g_Settings->*option.text == nullptr);
                }
            }});
            EXPECT_EQ(program.SettingsFile(), expected.after);
            EXPECT_EQ(program.notes, "");
            EXPECT_TRUE(program.windows.boxes.empty());
        });
    }
}

TEST(ControlSettings, TheFirstRunHasItsDefault) {
    InteractiveProgram program;
    program.Run({[&] {
        for (const Option& option : AllOptions()) {
            EXPECT_EQ(program.Control(option.screen, option.item).check,
                      option.bit == OPT_NO_WINDOW_ANIMATION ? 1 : 0);
        }
        EXPECT_EQ(program.SettingsFile(), "");
    }});
    EXPECT_EQ(program.SettingsFile(), "\0\0\x80\0"s);
}

TEST(ControlSettings, OnlyWhatIsTickedIsCaptured) {
    InteractiveProgram program;
    program.Run({[&] {
        program.Control(0, 0).check = 2;
        program.Control(0, 1).text = u"\\not ticked";
        program.Control(0, 17).check = 1;
        program.Control(0, 18).text = std::u16string(2000, u'e');
        program.Control(1, 6).position = 2;
        program.Control(1, 7).check = 1;
        program.Control(1, 8).position = -1;
        program.Control(4, 1).check = 1;
        program.Control(5, 7).check = 0;
        CSettings settings;
        settings.IeCacheLimitIndex = 5;
        EXPECT_EQ(CaptureSettings(settings), OPT_SEARCH_CUSTOM | OPT_LIMIT_IE_HISTORY);
        EXPECT_EQ(settings.UserDir1, nullptr);
        EXPECT_EQ(settings.CustomExtension.get(), std::u16string(1023, u'e'));
        EXPECT_EQ(settings.IeCacheLimitIndex, 5);
        EXPECT_EQ(settings.IeHistoryLimitIndex, -1);
    }});
}

// The program ends all the same.
TEST(ControlSettings, AFileThatCannotBeWrittenStaysAsItWas) {
    const std::string old = Number(OPT_CLEAN_USER1) + Record(u"\\old");
    for (const bool full : {false, true}) {
        InChild(full ? "no room" : "read-only file", [&] {
            InteractiveProgram program({"App/settings.dat=" + old});
            program.full = full;
            program.Run({[&] {
                program.Control(0, 1).text = u"\\new";
                if (!full) {
                    chmod((program.device.files() + "/App/settings.dat").c_str(), 0444);
                }
            }});
            EXPECT_EQ(program.SettingsFile(), old);
            EXPECT_EQ(program.notes,
                      "fennelbright: settings.dat cannot be written; the old one stays\n");
            EXPECT_TRUE(program.windows.boxes.empty());
        });
    }
}

}  // namespace
