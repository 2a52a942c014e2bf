#include <gtest/gtest.h>
#include <sys/stat.h>

#include <string>

#include "core/application.h"
#include "settings/control_settings.h"
#include "settings/settings_file.h"
#include "tests/support/files_alone.h"
#include "tests/support/interactive_program.h"
#include "tests/support/settings_bytes.h"

namespace {

using namespace std::string_literals;
using S = CSettings;

const std::string kFile = "App/settings.dat=";
constexpr const WCHAR* kModule = u"\\App\\Fennelbright.exe";

// An option: its bit, its box by page and item, and what goes with it.
struct OptionRow {
    std::uint32_t bit;
    UINT screen;
    UINT box;
    UINT value = 0;                    // item of the control beside the box
    const WCHAR* className = nullptr;  // of that control; null: there is none
    std::u16string stored = {};        // in the file with everything; a position as its digit
    SettingsText S::*text = nullptr;
    std::int32_t S::*position = nullptr;
};

// clang-format off
const OptionRow kOptionRows[] = {
    {0x1,       0, 0,  1,  u"EDIT",              u"\\1",   &S::UserDir1},
    {0x2,       0, 3,  4,  u"EDIT",              u"\\22",  &S::UserDir2},
    {0x4,       0, 6},
    {0x8,       0, 7},
    {0x10,      0, 8},
    {0x20,      0, 14},
    {0x40,      0, 15},
    {0x80,      0, 16},
    {0x1000000, 0, 17, 18, u"EDIT",              u"log",   &S::CustomExtension},
    {0x100,     1, 0},
    {0x200,     1, 1},
    {0x400,     1, 2,  3,  u"EDIT",              u"\\4",   &S::IeCacheDir},
    {0x800,     1, 5,  6,  u"COMBOBOX",          u"2",     nullptr, &S::IeCacheLimitIndex},
    {0x1000,    1, 7,  8,  u"COMBOBOX",          u"1",     nullptr, &S::IeHistoryLimitIndex},
    {0x2000,    1, 9,  10, u"COMBOBOX",          u"0",     nullptr, &S::IeCookieLimitIndex},
    {0x4000,    1, 11, 12, u"EDIT",              u"\\5",   &S::AvantGoDir},
    {0x8000,    2, 0},
    {0x10000,   3, 0,  1,  u"EDIT",              u"\\6\\", &S::FavoritesDir},
    {0x20000,   3, 3,  4,  u"EDIT",              u"\\7 7", &S::FontsDir},
    {0x40000,   3, 6,  7,  u"EDIT",              u"\\",    &S::MyDocumentsDir},
    {0x80000,   4, 0},
    {0x100000,  5, 0,  1,  u"msctls_trackbar32", u"2",     nullptr, &S::FontCacheIndex},
    {0x200000,  5, 5},
    {0x400000,  5, 6},
    {0x800000,  5, 7},
};
// clang-format on

std::string Everything() {
    return AllOptionsWith({u"\\1", u"\\22", u"log", u"\\4", u"\\5", u"\\6\\", u"\\7 7", u"\\"},
                          {2, 1, 0, 2});
}

std::u16string TextOf(const SettingsText& text) {
    return text == nullptr ? u"-" : text.get();
}

// A value as its row has it; "-" for a text that is not there.
std::u16string ValueIn(const CSettings& settings, const OptionRow& row) {
    return row.text != nullptr
               ? TextOf(settings.*row.text)
               : std::u16string(1, static_cast<WCHAR>(u'0' + settings.*row.position));
}

std::u16string ValueIn(const FakeWindow& control) {
    return control.position < 0 ? control.text
                                : std::u16string(1, static_cast<WCHAR>(u'0' + control.position));
}

TEST(Settings, EveryOptionHasItsBoxItsBitAndItsValue) {
    InteractiveProgram program({kFile + Everything()});
    program.Run({[&] {
        for (const OptionRow& row : kOptionRows) {
            CSettings with;
            EXPECT_EQ(CaptureSettings(with), kAllOptions);
            EXPECT_EQ(std::exchange(program.Control(row.screen, row.box).check, 0), 1);
            CSettings without;
            EXPECT_EQ(CaptureSettings(without), kAllOptions - row.bit);
            program.Control(row.screen, row.box).check = 1;
            EXPECT_TRUE(row.text == nullptr || g_Settings->*row.text == nullptr);
            if (row.className != nullptr) {
                EXPECT_EQ(program.Control(row.screen, row.value).className, row.className);
                EXPECT_EQ(ValueIn(program.Control(row.screen, row.value)), row.stored);
                EXPECT_EQ(ValueIn(with, row), row.stored);
                EXPECT_EQ(ValueIn(without, row), ValueIn(CSettings(), row));
            }
        }
    }});
}

// What a run that is ended at once reads and writes.
TEST(Settings, WhatIsReadComesBack) {
    const std::string worked = "\x01\x08\0\0\x02\0\0\0\\\0A\0\x01\0\0\0"s;
    const std::string longText = Number(0x20000) + Record(std::u16string(1023, u'\xFFFD'));
    const struct {
        const char* name;
        std::string before;
        std::string after;
        std::string notes = "";
    } cases[] = {
        {"worked example", kFile + worked, worked},
        {"all options", kFile + Everything(), Everything()},
        {"no file", "", "\0\0\x80\0"s},
        {"longest text", kFile + longText, longText},
        {"all bits", kFile + Number(0xFFFFFFFF) + Everything().substr(4), Everything()},
        {"empty text", kFile + Number(2) + Record(u""), Number(2) + Record(u"")},
        {"cut in a text", kFile + Number(1) + "\x02\0\0\0\\\0"s, Number(1) + Record(u""),
         "fennelbright: \\App\\settings.dat is damaged: only its readable part is used; it stays "
         "as it "
         "is until options are saved\n"},
        {"position of no choice", kFile + Number(0x800) + Number(7), Number(0x800) + Number(0)},
    };
    for (const auto& expected : cases) {
        SCOPED_TRACE(expected.name);
        InteractiveProgram program(Entries(expected.before.empty() ? 0 : 1, expected.before));
        program.Run({[&] {
            EXPECT_EQ(program.SettingsFile(),
                      expected.before.empty() ? "" : expected.before.substr(kFile.size()));
            EXPECT_EQ(program.Control(4, 1).check, 0);
        }});
        EXPECT_EQ(program.SettingsFile(), expected.after);
        EXPECT_EQ(program.notes, expected.notes);
        EXPECT_TRUE(program.windows.boxes.empty());
    }
}

TEST(Settings, ATextOfAnyLengthIsCapturedUpToItsLimit) {
    InteractiveProgram program;
    program.Run({[&] {
        program.Control(0, 0).check = 2;  // not ticked
        program.Control(0, 17).check = 1;
        program.Control(0, 18).text = std::u16string(2000, u'e');
    }});
    EXPECT_EQ(program.SettingsFile(), Number(0x1800000) + Record(std::u16string(1023, u'e')));
}

// The program ends all the same.
TEST(Settings, AFileThatCannotBeWrittenStaysAsItWas) {
    const std::string some = Number(1) + Record(u"\\old");
    const struct {
        std::string old;  // empty: none
        bool full;        // the file system; else the file is read-only
        std::string says;
    } cases[] = {{some, true, "so the old one stays: "},
                 {some, false, "so the old one stays: "},
                 {"", true, "so no options are saved: "}};
    for (const auto& [old, full, says] : cases) {
        SCOPED_TRACE(says + (full ? "no room" : "read-only file"));
        InteractiveProgram program(Entries(old.empty() ? 0 : 1, kFile + old));
        program.full = full;
        program.Run({[&] {
            program.Control(0, 1).text = u"\\new";
            if (!full) {
                chmod((program.device.files() + "/App/settings.dat").c_str(), 0444);
            }
        }});
        EXPECT_EQ(program.SettingsFile(), old);
        EXPECT_TRUE(program.notes.starts_with(
            "fennelbright: \\App\\settings.dat cannot be written, " + says))
            << program.notes;
        EXPECT_TRUE(program.windows.boxes.empty());
    }
}

// Loads settings from a device as an unattended run does.
std::int32_t Load(platform::DeviceStore& store, CSettings& settings, CollectedBoxes& windows) {
    g_Silent = true;
    const platform::StoreInUse inUse(store);
    const platform::WindowsInUse windowsInUse(windows);
    const std::int32_t mask = LoadSettings(settings);
    g_Silent = false;
    return mask;
}

// Whatever is missing is null or 0 and never half of what was written; nothing after it is taken.
TEST(Settings, ADamagedFileGivesWhatIsWholeInIt) {
    const std::u16string longest(1023, u'x');
    const struct {
        std::string content;
        std::uint32_t mask;
        std::u16string first, second;  // "-" for null
        std::int32_t position = 0;
    } cases[] = {
        {std::string(200, '\xFF'), 0xFFFFFFFF, u"-", u"-"},
        {Number(0xFE000001) + Record(u"\\a\\"), 0xFE000001, u"\\a\\", u"-"},
        {Number(0x803) + Record(u"") + Record(u"b") + Number(9) + "more", 0x803, u"", u"b", 9},
        {Number(3) + Record(longest) + Record(u"b"), 3, longest, u"b"},
        {Number(3) + Record(longest + u"x") + Record(u"b"), 3, u"-", u"-"},
        {Number(0x803) + Number(1024) + Record(u"") + Number(9), 0x803, u"-", u"-"},
        {Number(0x801) + Record(u"a") + "\x01\0\0"s, 0x801, u"a", u"-"},
        {Number(3) + Record(u"a") + "\x02\0"s, 3, u"a", u"-"},
        {Number(3) + Record(u"a") + Number(2) + "\\\0\\"s, 3, u"a", u"-"},
        {Number(3) + Number(0xFFFFFFFF) + std::string(9000, 'x'), 3, u"-", u"-"},
        {Number(3) + Record(u"\\a\0b\\"s) + Record(u"c"), 3, u"\\a", u"c"},
    };
    for (const auto& expected : cases) {
        const TemporaryDevice device({kFile + expected.content});
        FilesAlone store(device.OpenFiles(), kModule);
        CSettings settings;
        CollectedBoxes windows;
        EXPECT_EQ(static_cast<std::uint32_t>(Load(store, settings, windows)), expected.mask);
        EXPECT_EQ(TextOf(settings.UserDir1), expected.first);
        EXPECT_EQ(TextOf(settings.UserDir2), expected.second);
        EXPECT_EQ(settings.IeCacheLimitIndex, expected.position);
        EXPECT_TRUE(windows.boxes.empty());
    }
}

TEST(Settings, ThePathIsTheModulesLessSixteenCharacters) {
    const TemporaryDevice device({"P/settings.dat=" + Number(4), "P/Q/settings.dat=" + Number(8),
                                  "settings.dat=" + Number(16)});
    const std::pair<std::u16string, std::int32_t> cases[] = {
        {u"\\P\\Fennelbright.exe", 4},
        {u"\\P\\Q\\sixteen-char.exe", 8},
        {u"\\P\\Q\\name14char.exe", 4},  // two characters too many go
        {u"0123456789abcdef", 16},
        {u"", kNoMask},
        {std::u16string(2000, u'x'), kNoMask},
    };
    for (const auto& [module, mask] : cases) {
        FilesAlone store(device.OpenFiles(), module);
        CSettings settings;
        CollectedBoxes windows;
        EXPECT_EQ(Load(store, settings, windows), mask);
        EXPECT_EQ(windows.boxes, Entries(mask == kNoMask ? 1 : 0,
                                         "[Error!!!] Failed retrieving application directory"));
    }
}

// A store whose files can be opened and not be read.
class UnreadableFiles : public FilesAlone {
  public:
    using FilesAlone::FilesAlone;
    std::FILE* _wfopen(const WCHAR* /*path*/, const WCHAR* /*mode*/) override {
        return std::fopen("/", "rb");
    }
};

TEST(Settings, AFileThatCannotBeReadToItsEndTicksNothing) {
    UnreadableFiles store(platform::Descriptor(), kModule);
    CSettings settings;
    CollectedBoxes windows;
    testing::internal::CaptureStderr();
    EXPECT_EQ(Load(store, settings, windows), kNoMask);
    EXPECT_NE(testing::internal::GetCapturedStderr().find("cannot be read to its end"),
              std::string::npos);
}

}  // namespace
