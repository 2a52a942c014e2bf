#include "platform/host/settings_commands.h"

#include <getopt.h>

#include <algorithm>
#include <filesystem>

#include "tests/support/interactive_program.h"
#include "tests/support/settings_bytes.h"
#include "tests/support/system_calls.h"

namespace {

// Runs the host's command on the device, whose program lies in "\App". Returns its exit code.
int RunWords(const TemporaryDevice& device, Entries words) {
    words.insert(words.begin(), {"fennelbright", "--device", device.path(), "--module",
                                 "\\\\App\\\\Fennelbright.exe"});
    std::vector<char*> arguments;
    for (std::string& word : words) {
        arguments.push_back(word.data());
    }
    optind = 0;
    const auto line =
        platform::ParseCommandLine(static_cast<int>(arguments.size()), arguments.data());
    return line ? platform::RunSettingsCommands(*line) : 64;
}

std::string StoredIn(const TemporaryDevice& device) {
    return ReadFile(device.files() + "/App/settings.dat");
}

// clang-format off
const struct {
    std::uint32_t bit;
    WORD box;  // its control's ID; the next one is that of the value
    std::string name, value;
    std::string stored = {};  // after the mask
    std::string shown = {};   // where that is not the value
} kOptions[] = {
    {0x1,       50001, "clean-user-defined-1",    "\\St\xC3\xB6r\\", Record(u"\\St\u00F6r\\"), "'\\St\xC3\xB6r\\'"},
    {0x2,       50004, "clean-user-defined-2",    "\\B's=\\",   Record(u"\\B's=\\"), "'\\B'\\''s=\\'"},
    {0x4,       50007, "clean-temp",              "on"},
    {0x8,       50008, "clean-windows-temp",      "on"},
    {0x10,      50009, "clean-my-documents-temp", "on"},
    {0x20,      50015, "search-tmp",              "on"},
    {0x40,      50016, "search-log",              "on"},
    {0x80,      50017, "search-bak",              "on"},
    {0x1000000, 50018, "search-custom",           "old",        Record(u"old"),      "'old'"},
    {0x100,     50021, "clear-pocket-ie-cache",   "on"},
    {0x200,     50022, "clear-pocket-ie-history", "on"},
    {0x400,     50023, "move-pocket-ie-cache",    "\\C\\",      Record(u"\\C\\"),    "'\\C\\'"},
    {0x800,     50026, "limit-pocket-ie-cache",   "3072kb",     Number(2)},
    {0x1000,    50028, "limit-pocket-ie-history", "512kb",      Number(1)},
    {0x2000,    50030, "limit-pocket-ie-cookies", "256kb",      Number(0)},
    {0x4000,    50032, "move-avantgo-cache",      "\\D",        Record(u"\\D"),      "'\\D'"},
    {0x8000,    50035, "clear-redundant-registry-keys", "on"},
    {0x10000,   50036, "move-favorites-storage",  "\\E\\",      Record(u"\\E\\"),    "'\\E\\'"},
    {0x20000,   50039, "move-fonts-folder",       "\\",         Record(u"\\"),       "'\\'"},
    {0x40000,   50042, "move-my-documents",       "\\G \\",     Record(u"\\G \\"),   "'\\G \\'"},
    {0x80000,   50045, "remove-redundant-start-menu-items", "on"},
    {0x100000,  50048, "set-font-cache-size",     "4x",         Number(2)},
    {0x200000,  50050, "silent-cleanup-at-startup", "on"},
    {0x400000,  50051, "disable-start-menu-animation", "on"},
    {0x800000,  50052, "disable-window-animation", "on"},
};
// clang-format on

// As it is stored.
std::string ValueIn(const FakeWindow& control) {
    return control.position < 0 ? Record(control.text)
                                : Number(static_cast<std::uint32_t>(control.position));
}

// What the words set is what the windows show and save, and what is shown.
TEST(SettingsCommands, EveryOptionIsSetShownAndUnticked) {
    Entries all;
    std::string shown;
    for (const auto& option : kOptions) {
        InteractiveProgram program;
        const std::string word = option.name + '=' + option.value;
        const std::string line =
            option.name + '=' + (option.shown.empty() ? option.value : option.shown) + '\n';
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        EXPECT_EQ(RunWords(program.device, {"--set", word}), 0) << word;
        EXPECT_EQ(testing::internal::GetCapturedStdout(), line);
        EXPECT_NE(testing::internal::GetCapturedStderr().find("is new: from now on"),
                  std::string::npos);
        program.Run({[&] {
            EXPECT_EQ(StoredIn(program.device), Number(option.bit) + option.stored) << word;
            for (const auto& [handle, control] : program.windows.windows) {
                EXPECT_EQ(control.check, control.id == option.box ? 1 : 0) << control.id;
                EXPECT_TRUE(option.stored.empty() || control.id != option.box + 1U ||
                            ValueIn(control) == option.stored)
                    << word;
            }
        }});
        EXPECT_EQ(StoredIn(program.device), Number(option.bit) + option.stored) << word;
        EXPECT_EQ(RunWords(program.device, {"--set", option.name + "=off"}), 0);
        EXPECT_EQ(StoredIn(program.device), Number(0)) << word;
        all.insert(all.end(), {"--set", word});
        shown += line;
    }
    const std::string everything = AllOptionsWith(
        {u"\\St\u00F6r\\", u"\\B's=\\", u"old", u"\\C\\", u"\\D", u"\\E\\", u"\\", u"\\G \\"},
        {2, 1, 0, 2});
    InteractiveProgram program;
    EXPECT_EQ(RunWords(program.device, all), 0);
    EXPECT_EQ(program.SettingsFile(), everything);
    program.Run();
    EXPECT_EQ(program.SettingsFile(), everything) << "saved by the windows";
    testing::internal::CaptureStdout();
    EXPECT_EQ(RunWords(program.device, {"--show-settings"}), 0);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), shown);
}

TEST(SettingsCommands, WhatIsStoredIsShownOrRefused) {
    const std::string stored = "App/settings.dat=";
    const struct {
        Entries files;
        int shows, sets;    // exit codes
        std::string json;   // a part of it
        std::string after;  // "clear-redundant-registry-keys" is set; empty: as before
    } cases[] = {
        {{}, 0, 0, "\"state\":\"missing\",\"options\":{\"clean-user-de", Number(0x8000)},
        {{stored + Number(0x1) + Record(u"\\a\u200B\"")},
         0,
         0,
         R"(1":{"ticked":true,"text":"\\a<200B>\"","units":"005c0061200b0022"},"clean)",
         Number(0x8001) + Record(u"\\a\u200B\"")},
        {{stored + Number(0x801) + Record(u"") + Number(7)},
         0,
         0,
         "limit-pocket-ie-cache\":{\"ticked\":true,\"position\":7},",
         Number(0x8801) + Record(u"") + Number(7)},
        {{stored + Number(0xFE000004)}, 0, 0, "clean-temp\":{\"ticked\":true}", Number(0x8004)},
        {{stored + Number(4) + "x"}, 65, 65, "clean-temp\":{\"ticked\":true}", ""},
        {{stored + "\x04"}, 65, 65, "\"state\":\"damaged\"", ""},
        {{stored + Number(0xFFFFFFFF)}, 65, 65, "clean-temp\":{\"ticked\":false}", ""},
        {{stored + Number(3) + Record(u"\\a") + Number(9)}, 65, 65, "\"text\":\"\\\\a\"}", ""},
        {{stored + Number(1) + Record({u'\\', u'\0', u'b'})}, 65, 65, "damaged", ""},
        {{"App/settings.dat/"}, 74, 74, "", ""},
        {{"App/settings.dat>/none"}, 74, 74, "", ""},
        {{"App=1"}, 0, 74, "missing", ""},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.json + each.after);
        const TemporaryDevice device(each.files);
        const Entries before = device.Listing();
        testing::internal::CaptureStdout();
        EXPECT_EQ(RunWords(device, {"--show-settings=json"}), each.shows);
        const std::string json = testing::internal::GetCapturedStdout();
        EXPECT_NE(json.find(each.json), std::string::npos) << json;
        EXPECT_EQ(json.empty(), each.json.empty());
        EXPECT_EQ(device.Listing(), before);
        EXPECT_EQ(RunWords(device, {"--set", "clear-redundant-registry-keys=on"}), each.sets);
        EXPECT_EQ(each.after.empty() ? device.Listing() == before : StoredIn(device) == each.after,
                  true);
    }
}

TEST(SettingsCommands, AFaultAtAnyCallLeavesTheOldFileOrTheNewOne) {
    const std::string after = "App/settings.dat=" + Number(0x5) + Record(u"\\new\\");
    const std::string first = "App/settings.dat=" + Number(0x1) + Record(u"\\new\\");
    const std::pair<Entries, Entries> cases[] = {
        {{"App/", "App/settings.dat=" + Number(0x4), "a=1"}, {"App/", after, "a=1"}},
        {{"a=1"}, {"App/", first, "a=1"}},
    };
    int refusals = 0;
    for (const auto& [before, changed] : cases) {
        for (const int error : {0, EIO, ENOSPC}) {
            for (int number = 1;; ++number) {
                const TemporaryDevice device(before);
                const int exitCode = RunWithFault({.faultAt = number, .error = error}, [&device] {
                    EXPECT_NE(std::freopen("/dev/null", "w", stdout), nullptr);
                    return RunWords(device, {"--set", "clean-user-defined-1=\\new\\"});
                });
                if (exitCode == kNoSuchCall) {
                    EXPECT_GT(number, 5);
                    break;
                }
                SCOPED_TRACE(std::to_string(error) + " at " + std::to_string(number));
                Entries left = device.Listing();
                EXPECT_TRUE(left == changed || exitCode != 0);
                refusals += exitCode == 74 ? 1 : 0;
                if (exitCode < 0 && left != changed) {
                    // What a kill may leave: the directory, and what the next run removes.
                    std::erase_if(left, [isNew = before.size() == 1](const std::string& entry) {
                        return entry.starts_with(".fennelbright-new-") ||
                               (isNew && entry == "App/");
                    });
                }
                EXPECT_TRUE(left == before || left == changed) << testing::PrintToString(left);
                EXPECT_EQ(std::distance(std::filesystem::directory_iterator(device.path()), {}), 1);
            }
        }
    }
    EXPECT_GT(refusals, 10);
}

}  // namespace
