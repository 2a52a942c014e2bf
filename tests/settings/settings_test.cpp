#include <sys/resource.h>
#include <sys/stat.h>

#include <csignal>

#include "core/application.h"
#include "settings/settings_file.h"
#include "tests/support/files_alone.h"
#include "tests/support/interactive_program.h"
#include "tests/support/settings_bytes.h"

namespace {

using namespace std::string_literals;

const std::string kFile = "App/settings.dat=";
constexpr const WCHAR* kModule = u"\\App\\Fennelbright.exe";

std::string Everything() {
    return AllOptionsWith({u"\\1", u"\\22", u"log", u"\\4", u"\\5", u"\\6\\", u"\\7 7", u"\\"},
                          {2, 1, 0, 2});
}

std::u16string TextOf(const SettingsText& text) {
    return text == nullptr ? u"-" : text.get();
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
    std::signal(SIGXFSZ, SIG_IGN);
    for (const auto& [old, full, says] : cases) {
        SCOPED_TRACE(says + (full ? "no room" : "read-only file"));
        InteractiveProgram program(Entries(old.empty() ? 0 : 1, kFile + old));
        const rlimit limit = {full ? 1000 : RLIM_INFINITY, RLIM_INFINITY};
        program.Run({[&, full = full] {
            program.Control(0, 0).check = 1;
            program.Control(0, 1).text = std::u16string(1000, u'n');
            chmod((program.device.files() + "/App/settings.dat").c_str(), full ? 0644 : 0444);
            setrlimit(RLIMIT_FSIZE, &limit);
        }});
        EXPECT_EQ(program.SettingsFile(), old);
        EXPECT_TRUE(program.notes.starts_with(
            "fennelbright: \\App\\settings.dat cannot be written, " + says))
            << program.notes;
        EXPECT_TRUE(program.windows.boxes.empty());
    }
    const rlimit none = {RLIM_INFINITY, RLIM_INFINITY};
    setrlimit(RLIMIT_FSIZE, &none);
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
