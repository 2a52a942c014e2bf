// The whole program, run as a user runs it.

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <tuple>

#include "platform/device/user_directories.h"
#include "platform/host/worst_exit_code.h"
#include "tests/support/apply_device.h"
#include "tests/support/settings_bytes.h"

namespace {

struct Outcome {
    int exitCode;  // -1 when a signal ended it
    std::string output;
    std::string errors;
};

// Runs the built program with these words, without a display, after the shell's command `before`.
Outcome RunProgram(const Entries& words, const std::string& before = "true") {
    const TemporaryDevice scratch;
    const std::string output = scratch.path() + "/output";
    const std::string errors = scratch.path() + "/errors";
    std::string command = "unset DISPLAY WAYLAND_DISPLAY QT_QPA_PLATFORM; exec >" + output + " 2>" +
                          errors + "; " + before + "; exec " + FENNELBRIGHT_PROGRAM;
    for (const std::string& word : words) {
        command.append(" '").append(word).append("'");
    }
    const int status = std::system(command.c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, ReadFile(output), ReadFile(errors)};
}

using namespace std::string_literals;

// A settings.dat beside the program at its usual place.
std::string SettingsEntry(const std::string& content) {
    return "Program Files/Fennelbright/settings.dat=" + content;
}

const std::string kFixedDirectories = "\x1C\0\0\0"s;
const std::string kRootTemp = "\x04\0\0\0"s;
const std::string kQuietRegistry = "../registry.reg="s + kQuietTweaks;

Outcome RunReported(const std::string& device) {
    return RunProgram({"--device", device, "--report", "silent"});
}

TEST(Program, ExitCodesSayWhatWentWrong) {
    const TemporaryDevice device({"Temp/keep=1", SettingsEntry(kRootTemp)});
    const TemporaryDevice noDevice;
    std::filesystem::remove(noDevice.files());
    const TemporaryDevice linked;
    std::filesystem::remove(linked.files());
    std::filesystem::create_symlink(device.files(), linked.files());
    const TemporaryDevice damaged({"../registry.reg=REGEDIT4\n\n[HKEY_CURRENT_USER\n"});
    const std::string& taken = device.path();
    // What it says is a part of standard error, or of standard output where it ends well.
    const std::tuple<Entries, int, std::string> cases[] = {
        {{}, 64, "no device directory"},
        {{"--device", taken, "-r", "silent"}, 64, "fennelbright: -r: there is no such option; see"},
        {{"--device", taken, "silent", "--unknown"}, 64, "fennelbright: --unknown: there is no"},
        {{"--strict=1", "silent"}, 64, "fennelbright: --strict=1: this option takes no value"},
        {{"silent", "--device"}, 64, "fennelbright: --device: a value must follow"},
        {{"--device", "", "silent"}, 64, "empty"},
        {{"--device", taken, "--new-device", taken + "/new"}, 64, "only one of"},
        {{"--device", taken, "--files", taken, "s"}, 64, "only one of"},
        {{"--device", taken, "--registry", taken + "/r", "s"}, 64, "go with --files; --device DIR"},
        {{"--files", taken, "--state", "a", "--state", "b", "s"}, 64, "\"b\": it can be given"},
        {{"--device", taken, "--device", taken}, 64, "several devices are for a silent run alone"},
        {{"--device", taken, "--device", taken, "--set", "clean-temp=on"}, 64, "several devices"},
        {{"--device", taken, "--scale", "9", "s"}, 64, ": --scale \"9\": it takes a number from"},
        {{"--device", taken, "--set", "clean-tmp=on"}, 64, ": --set \"clean-tmp=on\": there is no"},
        {{"--device", taken, "--set", "clean-temp"}, 64, "\"clean-temp\", which takes on or off"},
        {{"--device", taken, "--set", "clean-temp=yes"}, 64, "cannot have that value"},
        {{"--device", taken, "--set", "limit-pocket-ie-cache=1"}, 64, "1024kb, 2048kb, 3072kb or"},
        {{"--device", taken, "--set", "clean-user-defined-1="}, 64, "a directory such as"},
        {{"--device", taken, "--set", "clean-user-defined-1=/Temp/"}, 64, "a directory such as"},
        {{"--device", taken, "--set", "move-fonts-folder=\\a\\..\\"}, 64, "a directory such as"},
        {{"--device", taken, "--set", "search-custom=\xFF"}, 64, "an extension such as"},
        {{"--device", taken, "--set", "search-custom=" + std::string(1024, 'x')}, 64, "extension"},
        {{"--device", taken, "--set", "clean-temp=on", "--set", "clean-temp=off"}, 64, "set twice"},
        {{"--device", taken, "--show-settings", "silent"}, 64, "\"silent\": --set and --show-set"},
        {{"--device", taken, "--boot", "--set", "clean-temp=on"}, 64, "go with --device or"},
        {{"--device", taken, "--module", "\\x.exe", "--show-settings"}, 64, "fewer than 16"},
        {{"--show-settings"}, 64, "no device directory"},
        {{"--device", taken + "/none", "--show-settings"}, 66, "No such file"},
        {{"--device", taken, "--show-settings"}, 0, "\nclean-temp=on\nclean-windows-temp=off\n"},
        {{"--device", taken, "--boot", "silent"}, 64, "each shortcut has its own"},
        {{"--device", taken, "--boot", "--report-html", "p"}, 64, "the page of another"},
        {{"--device", taken, "--report-html", "", "silent"}, 64, "--report-html \"\": the name is"},
        {{"--device", taken, "--report=xml", "silent"}, 64, "\"lines\" or \"json\""},
        {{"--boot"}, 64, "no device directory"},
        {{"--device", taken, "--module", "\xFF", "silent"}, 64, "UTF-8"},
        {{"--device", damaged.path(), "silent"}, 65, "line 3"},
        {{"--device", taken + "/none", "silent"}, 66, "device directory: No such file"},
        {{"--device", noDevice.path(), "silent"}, 66, "neither"},
        {{"--device", taken + "/files", "silent"}, 66, "directory above it"},
        {{"--device", linked.path(), "silent"}, 66, "\"files\": cannot be used"},
        {{"--device", "/", "silent"}, 66, "root of this machine"},
        {{"--device", taken}, 69, "leads to a display"},
        {{"--device", taken, "--no-display", "Silent"}, 69, "--no-display was given"},
        {{"--new-device", taken}, 73, "not empty"},
        {{"--new-device", taken + "/none/new"}, 73, "No such file"},
        {{"--new-device", taken + "/new", "silent"}, 64, "no command line"},
        {{"--help", "--new-device", taken + "/new"}, 0, "Usage"},
        {{"-h", "silent"}, 0, "\nExit codes\n   0  "},
        {{"--version"}, 0, "fennelbright "},
        {{"-V"}, 0, "fennelbright "},
    };
    const Entries before = device.Listing();
    for (const auto& [words, exitCode, says] : cases) {
        const Outcome outcome = RunProgram(words);
        SCOPED_TRACE(testing::PrintToString(words) + outcome.errors);
        EXPECT_EQ(outcome.exitCode, exitCode);
        const std::string& said = exitCode == 0 ? outcome.output : outcome.errors;
        EXPECT_NE(said.find(says), std::string::npos);
        EXPECT_FALSE(outcome.errors.starts_with('['));
    }
    for (const char* const kind : {"vnc", "linuxfb:fb=/dev/fb0", "eglfs", "minimal", "offscreen",
                                   "xcb;vnc", "Xcb2", ";", "wayland;minimalegl"}) {
        const Outcome outcome =
            RunProgram({"--device", taken}, "export 'QT_QPA_PLATFORM="s + kind + "'");
        EXPECT_EQ(outcome.exitCode, 69);
        EXPECT_NE(outcome.errors.find("QT_QPA_PLATFORM="s + kind), std::string::npos) << kind;
    }
    EXPECT_EQ(RunProgram({"--device", taken, "silent"}, "HOME=" + taken + "/.").exitCode, 66);
    EXPECT_EQ(device.Listing(), before);
    WriteFile(noDevice.registry(), "");
    EXPECT_EQ(RunReported(noDevice.path()).exitCode, 0) << "a registry alone is a device";
    EXPECT_FALSE(std::filesystem::exists(noDevice.files()));
}

TEST(Program, ASampleDeviceIsCleanedOnceAndThenLeftAlone) {
    const TemporaryDevice parent;
    const std::string device = parent.path() + "/sample";
    ASSERT_EQ(RunProgram({"--new-device", device}).exitCode, 0);
    const Outcome first = RunReported(device);
    EXPECT_EQ(first.exitCode, 0);
    EXPECT_EQ(first.errors, "");
    for (const std::string line :
         {"step 1: deleted \\Program Files\\Reader\\Cache\\page1.dat (8192 bytes)\n",
          "step 12: moved \\My Documents\\AvantGo\\channels.db to \\Storage Card\\AvantGo\\chan",
          "step 13: deleted key [HKLM\\Software\\Apps\\Harbour Chess]\n",
          "step 14: wrote [HKLM\\Explorer\\Shell Folders] \"Favorites\": \"\\Windows\\Fav",
          "step 17: deleted \\Windows\\Start Menu\\Programs\\Profile.lnk (30 bytes)\n",
          "step 18: wrote [HKLM\\System\\GDI\\GLYPHCACHE] \"limit\": 8192 -> 16384\n",
          "step 19: made shortcut \\Windows\\StartUp\\Fennelbright.lnk to \"\\Program Files\\"}) {
        EXPECT_NE(first.output.find(line), std::string::npos) << line;
    }
    const std::string files = device + "/files/";
    EXPECT_TRUE(std::filesystem::exists(files + "My Documents/Letter.txt"));
    EXPECT_TRUE(std::filesystem::is_empty(files + "Temp/Unpack/Images"));
    EXPECT_EQ(RunReported(device).output,
              "total: 0 files deleted (0 bytes), 0 entries moved, 0 directories made, "
              "0 directories removed, 0 shortcuts made, 0 values written, 0 keys deleted, "
              "0 not done\n");
}

TEST(Program, BootingRunsTheShortcutsOfThisProgramAlone) {
    const std::string settings = SettingsEntry("\x04\0\x20\0"s);  // "\\Temp", silent at startup
    const std::pair<const char*, bool> cases[] = {
        {"9#\"\\Program Files\\Fennelbright\\Fennelbright.exe\" silent\"", true},
        {"9#\\program files\\fennelbright\\fennelbright.exe   silent", true},
        {"9#\"\\Program Files\\Fennelbright\\Fennelbright.exe.old\" silent", false},
        {"9#\\Program Files\\Fennelbright\\Fennelbright.exes silent", false},
        {"9#\\Windows\\poutlook.exe silent", false},
        {"silent", false},
    };
    for (const auto& [shortcut, runs] : cases) {
        SCOPED_TRACE(shortcut);
        const TemporaryDevice device({"Temp/a=1", settings, "Windows/StartUp/x.LNK="s + shortcut,
                                      "Windows/StartUp/readme.txt=1"});
        const Outcome outcome = RunProgram({"--device", device.path(), "--boot", "--report"});
        EXPECT_EQ(outcome.exitCode, 0);
        EXPECT_EQ(outcome.output.find("deleted \\Temp\\a") != std::string::npos, runs);
        EXPECT_EQ(outcome.errors.find("x.LNK is skipped") == std::string::npos, runs);
        EXPECT_EQ(outcome.errors.find("nothing to run") == std::string::npos, runs);
    }
    const TemporaryDevice unread({"Windows/StartUp/x.lnk>x.lnk"});
    EXPECT_EQ(RunProgram({"--device", unread.path(), "--boot"}).errors.find("nothing"),
              std::string::npos);
    const TemporaryDevice device(
        {"Windows/StartUp/x.lnk=9#"s + "\\Program Files\\Fennelbright\\Fennelbright.exe"});
    EXPECT_EQ(RunProgram({"--device", device.path(), "--boot"}).exitCode, 69);
}

TEST(Program, HostileTreesAreCleanedAndNothingElseIs) {
    const TemporaryDevice outside({"keep=1", "dir/keep=2"});
    const TemporaryDevice device(
        {"Temp/out>" + outside.files(), "Temp/up>../../..", "Temp/loop>loop", "Temp/self>.",
         "Temp/pipe|", "Temp/file=f", "Temp/s/dead>/none", "Windows/w.exe=w",
         "Windows/Temp>" + outside.files() + "/dir", "Temp/" + std::string(255, 'l') + "=x",
         "Temp/a\\b:*?\"<|\x01 =y", "Temp/not\xFFutf8\xC3=z", "Temp/\xEF\x80\xAA/in=i",
         "Temp/ ... /x=1", "Temp/d/T=1", "Temp/d/t=2", "Temp/D/T=3",
         SettingsEntry(kFixedDirectories), kQuietRegistry});
    const Outcome outcome = RunReported(device.path());
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.errors, "");
    EXPECT_NE(outcome.output.find("\\Temp\\a<F05C>b<F03A>"), std::string::npos);
    EXPECT_EQ(outside.Listing(), (Entries{"dir/", "dir/keep=2", "keep=1"}));
    EXPECT_EQ(
        device.Listing(),
        (Entries{"Program Files/", "Program Files/Fennelbright/", SettingsEntry(kFixedDirectories),
                 "Temp/", "Temp/ ... /", "Temp/D/", "Temp/d/", "Temp/s/", "Temp/\xEF\x80\xAA/",
                 "Windows/", "Windows/Temp>" + outside.files() + "/dir", "Windows/w.exe=w"}));
}

TEST(Program, ASecondRunOnADeviceIsRefused) {
    const TemporaryDevice device(
        {"Temp/keep=1", SettingsEntry(kRootTemp),
         "Windows/StartUp/x.lnk=9#\"\\Program Files\\Fennelbright\\Fennelbright.exe\" s"});
    WriteFile(device.path() + "/.fennelbright-new-0123456789abcdef", "half");
    const Entries before = device.Listing();
    for (const std::string& held : {device.path(), device.files()}) {
        const platform::Descriptor other(open(held.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        EXPECT_EQ(RunProgram({"--device", device.path(), "--show-settings"}).exitCode, 0);
        // As another run has it, and as a rehearsal.
        for (const int lock : {LOCK_EX, LOCK_SH}) {
            ASSERT_EQ(flock(other.get(), lock), 0);
            for (const std::string task : {"silent", "--boot", "--", "--set=clean-temp=off"}) {
                const Outcome outcome = RunProgram({"--device", device.path(), task});
                EXPECT_EQ(outcome.exitCode, 75) << task;
                EXPECT_NE(outcome.errors.find(device.path() + ": in use"), std::string::npos);
            }
            EXPECT_EQ(RunProgram({"--device", device.path(), "--rehearse", "silent"}).exitCode,
                      lock == LOCK_SH ? 0 : 75);
        }
    }
    EXPECT_EQ(device.Listing(), before);
    WriteFile(device.registry(), kQuietTweaks);
    EXPECT_EQ(RunProgram({"--device", device.path(), "--boot"}).exitCode, 0);
    EXPECT_FALSE(std::filesystem::exists(device.path() + "/.fennelbright-new-0123456789abcdef"));
    EXPECT_FALSE(std::filesystem::exists(device.files() + "/Temp/keep"));
}

// The registry does not matter for them, and a full disk keeps what was there.
TEST(Program, OptionsAreSetOnWhateverHasFiles) {
    std::string longPath = "\\";
    while (longPath.size() < 1000) {
        longPath += "d\\";
    }
    const struct {
        std::string value;
        const char* before;
        int exitCode;
        std::string errors;
        std::string after;
    } cases[] = {
        {"\\Old\\", "true", 0, "", Number(0x5) + Record(u"\\Old\\")},
        {"\\", "true", 0, "=\\ is the whole device: every run will delete all files on it\n",
         Number(0x5) + Record(u"\\")},
        {"\\Old", "true", 0, "=\\Old deletes nothing: a directory to clean must end in a",
         Number(0x5) + Record(u"\\Old")},
        {longPath, "ulimit -S -f 1", 74,
         "\\Program Files\\Fennelbright\\settings.dat cannot be written, so the old one stays: "
         "File too large\n",
         kRootTemp},
    };
    for (const auto& each : cases) {
        const TemporaryDevice device({SettingsEntry(kRootTemp), "../registry.reg=damaged\n["});
        const Outcome outcome =
            RunProgram({"--device", device.path(), "--set", "clean-user-defined-1=" + each.value},
                       each.before);
        SCOPED_TRACE(outcome.errors);
        EXPECT_EQ(outcome.exitCode, each.exitCode);
        EXPECT_NE(outcome.errors.find(each.errors), std::string::npos);
        EXPECT_EQ(outcome.errors.empty(), each.errors.empty());
        EXPECT_EQ(device.Listing(), (Entries{"Program Files/", "Program Files/Fennelbright/",
                                             SettingsEntry(each.after)}));
        EXPECT_EQ(ReadFile(device.registry()), "damaged\n[");
    }
}

// Directories from "home" on, the user's own; "card" is the one to be cleaned.
TEST(Program, FilesThatCannotBeMeantAreRefusedUnderAnyName) {
    const struct {
        Entries words;  // after "--files"
        int exitCode;
        std::string says;
    } cases[] = {
        {{"/proc/self/root/."}, 66, "it is the root of this machine's file system"},
        {{"link"}, 66, "it is your home directory"},
        {{"link/.."}, 66, "your home directory is in it"},
        {{"home/.local"}, 66, "what is kept of its runs would be in it"},
        {{"card/none"}, 66, "No such file"},
        {{"card/Temp/a"}, 66, "it is not a directory"},
        {{"system"}, 66, "\"etc\" and \"usr\" are in it"},
        {{"card", "--state", "card/new"}, 66, "what is kept of its runs would be in it"},
        {{"card", "--state", "up/card/Temp"}, 66, "what is kept of its runs would be in it"},
        {{"card", "--state", "none/../up/card/x"}, 0, "last-run.txt is not written: none/../up"},
        {{"card", "--state", "home/file"}, 0, "last-run.txt is not written: home/file"},
        {{"card", "--registry", "up/card/r.reg"}, 66, "it is among the files that are cleaned"},
        {{"card", "--registry", "home/none.reg"}, 66, "home/none.reg: cannot be used"},
        {{"card", "--registry", "odd/.fennelbright-new-0123456789abcdef"}, 66, "such names are"},
        {{"card", "--registry", "home/bad.reg"}, 65, "card: bad.reg, line 2: cannot"},
        {{"card", "--registry", "home/to.reg"}, 65, "to.reg: cannot use it: it is no regular"},
        {{"card", "--registry", "home/full.reg"}, 0, "has no HKEY_CURRENT_USER, as a desktop's"},
        {{"card", "--registry", "home/full.reg", "--report-html", "home/full.reg"},
         0,
         "home/full.reg: cannot write the report: it is the device's registry"},
        {{"card", "--report-html", "card/page"}, 0, "it would be among the device's files"},
    };
    const TemporaryDevice place(
        {"home/file=", "home/bad.reg=\n[x", "home/to.reg>bad.reg", "link>home", "up>.",
         "odd/.fennelbright-new-0123456789abcdef=", "home/.local/", "system/etc/", "system/usr/",
         "card/Temp/a=1",
         "home/full.reg=" + std::string(kQuietTweaks) + "[HKEY_USERS\\.DEFAULT]\n"});
    const Entries before = place.Listing();
    for (const auto& each : cases) {
        Entries words = {"--no-display", "silent", "--files"};
        words.insert(words.end(), each.words.begin(), each.words.end());
        const Outcome outcome =
            RunProgram(words, "cd " + place.files() +
                                  "; unset XDG_STATE_HOME; HOME=" + place.files() + "/home");
        SCOPED_TRACE(testing::PrintToString(each.words) + outcome.errors);
        EXPECT_EQ(outcome.exitCode, each.exitCode);
        EXPECT_NE(outcome.errors.find(each.says), std::string::npos);
        std::filesystem::remove_all(place.files() + "/none");
        std::filesystem::remove_all(place.files() + "/home/.local/state");
        EXPECT_EQ(place.Listing(), before);
    }
}

TEST(Program, EachPlaceOfFilesHasItsOwnReportOutsideOfThem) {
    const std::string deep = std::string(150, 'n').append("/").append(150, 'n');
    const TemporaryDevice place({"home/"});
    const std::string environment =
        "unset XDG_STATE_HOME; HOME=" + place.files() + "/home; cd " + place.files();
    Entries reports;
    for (const std::string& card : {"a/b"s, "a+b"s, "a%2Bb"s, deep}) {
        place.Make({card + "/Temp/f=1", card + '/' + SettingsEntry(kRootTemp),
                    card + ".d/any name=" + kQuietTweaks});
        for (const std::string& held : {card, card + ".d"}) {
            const platform::Descriptor other(
                open((place.files() + '/' + held).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
            ASSERT_EQ(flock(other.get(), LOCK_EX), 0);
            EXPECT_EQ(
                RunProgram({"--files", card, "--registry", card + ".d/any name", "s"}, environment)
                    .exitCode,
                75);
        }
        const Outcome outcome = RunProgram(
            {"--files", card, "--registry", card + ".d/any name", "--strict", "s"}, environment);
        EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
        EXPECT_EQ(ListingOf(place.files() + '/' + card),
                  (Entries{"Program Files/", "Program Files/Fennelbright/",
                           SettingsEntry(kRootTemp), "Temp/"}));
        EXPECT_EQ(ListingOf(place.files() + '/' + card + ".d"),
                  (Entries{"any name="s + kQuietTweaks}));
    }
    for (const std::string& entry : ListingOf(place.files() + "/home/.local/state/fennelbright")) {
        if (entry.find("/last-run.txt=step 3: deleted \\Temp\\f (1 byte)") != std::string::npos) {
            reports.push_back(entry);
        }
    }
    EXPECT_EQ(reports.size(), 4U);
    const std::string full(200, 'n');
    EXPECT_TRUE(platform::StateDirectoryFor('/' + full + "..")
                    .ends_with("/fennelbright/" + full + "%/%.."));
    EXPECT_TRUE(RunProgram({"--files", "a/b", "--no-display", "s"}, environment)
                    .errors.starts_with("[Error] Unable to locate Menu Animation\n"))
        << "without a registry";
}

// The second one cannot be opened, the third one has no registry.
TEST(Program, SeveralDevicesAreCleanedOneAfterTheOther) {
    const std::pair<std::string, std::string> forms[] = {
        {"--report",
         "device 1\nstep 3: deleted \\Temp\\a (1 byte)\ntotal: 1 file deleted (1 byte), 0 entries "
         "moved, 0 directories made, 0 directories removed, 0 shortcuts made, 0 values written, 0 "
         "keys deleted, 0 not done\ndevice none\nnothing is done: it is no usable device "
         "directory\n"
         "device 3\nstep 3: deleted \\Temp\\b (2 bytes)\nstep 4: not deleted "
         "\\Windows\\Temp\\locked (it is read-only)\ntotal: 1 file deleted (2 bytes), 0 entries "
         "moved, 0 directories made, 0 "
         "directories removed, 0 shortcuts made, 0 values written, 0 keys deleted, 1 not done\nsum "
         "of 3 devices: 2 files deleted (3 bytes), 0 entries moved, 0 directories made, 0 "
         "directories removed, 0 shortcuts made, 0 values written, 0 keys deleted, 1 not done\n"},
        {"--report=json", R"({"kind":"ended","device":"none","exit_code":66}
{"kind":"run",)"},
        {"--report=json",
         R"({"kind":"sum","devices":3,"files_deleted":2,"bytes_deleted":3,"entries_moved":0,"directories_made":0,"directories_removed":0,"shortcuts_made":0,"values_written":0,"keys_deleted":0,"not_done":1,"exit_code":66}
)"},
    };
    for (const auto& each : forms) {
        const TemporaryDevice place({"1/files/Temp/a=1", "1/files/" + SettingsEntry(kRootTemp),
                                     "1/registry.reg=" + std::string(kQuietTweaks),
                                     "3/files/Temp/b=22", "3/files/Windows/Temp/locked=1",
                                     "3/files/" + SettingsEntry(kFixedDirectories)});
        chmod((place.files() + "/3/files/Windows/Temp/locked").c_str(), 0444);
        const auto run = [&](const std::string& page) {
            return RunProgram({"--device", "1", each.first, "--device", "none", "--strict",
                               "--device", "3", "--report-html", page, "silent"},
                              "cd " + place.files());
        };
        const Outcome outcome = run("page");
        EXPECT_EQ(outcome.exitCode, 66);
        EXPECT_NE(outcome.output.find(each.second), std::string::npos) << outcome.output;
        EXPECT_TRUE(outcome.errors.starts_with("fennelbright: none: cannot be used") &&
                    outcome.errors.find("\nfennelbright: 3: its messages:\n[Error] Unable to") !=
                        std::string::npos)
            << outcome.errors;
        const std::string page = ReadFile(place.files() + "/page");
        std::size_t end = 0;
        for (const std::string part :
             {"<td>1</td>", "id=\"run1-step3\"", "<td>none</td>", "it is no usable", "<td>3</td>",
              "href=\"#run3-undone", "id=\"run3-undone\"", "Sum of", "<td>3</td>", "1 not done",
              "</html>\n"}) {
            end = page.find(part, end);
            EXPECT_NE(end, std::string::npos) << part;
        }
        EXPECT_NE(run("3/page").errors.find("it would be in the device dir"), std::string::npos);
    }
}

TEST(Program, NothingChangesWhereTheRegistryCannotBeStored) {
    const TemporaryDevice device({"Temp/keep=1", SettingsEntry(kRootTemp), kQuietRegistry});
    chmod(device.registry().c_str(), 0444);
    const Outcome outcome = RunReported(device.path());
    EXPECT_EQ(outcome.exitCode, 73);
    EXPECT_NE(outcome.errors.find("registry.reg: cannot write it: it is read-only"),
              std::string::npos);
    EXPECT_TRUE(std::filesystem::exists(device.files() + "/Temp/keep"));
}

TEST(Program, WhatCouldNotBeDoneIsReported) {
    const std::string noRoom = "\x00\0\x10\0\x01\0\0\0"s;  // the font cache, its second position
    const std::string glyphs = "[HKEY_LOCAL_MACHINE\\System\\GDI\\GLYPHCACHE]\n";
    const std::u16string longest = u'\\' + std::u16string(1021, u'x') + u'\\';
    const struct {
        Entries files;
        int strict;                  // exit code with --strict
        std::string report, errors;  // a part of each
        std::string registry = kQuietTweaks;
        const char* before = "true";
        int exitCode = 0;
    } cases[] = {
        {{"Temp/a=1", SettingsEntry(kRootTemp)}, 0, ", 0 not done", ""},
        {{"Temp/locked=1", SettingsEntry(kRootTemp)},
         74,
         "step 3: not deleted \\Temp\\locked (it is read-only)\ntotal: 0 files",
         ""},
        {{"Temp>Windows", "Windows/", SettingsEntry(kRootTemp)},
         74,
         "step 3: not read \\Temp (a symbolic link, which is not followed)",
         ""},
        {{SettingsEntry(Number(3) + Record(u"\\Old\\") + Record(longest))},
         74,
         "step 1: not read \\Old (there is no such directory)\ntotal",
         ": * is left alone in \\xxx"},
        {{SettingsEntry(Number(3) + Record(u"\\W\\") + Record(u"\\")), "W/", "a/b=1"},
         0,
         "step 2: deleted \\a\\b (1 byte)\n",
         ": warning: clean-user-defined-2=\\ is the whole device: every run will delete all files"},
        {{SettingsEntry(kRootTemp)}, 74, "", "[Error] Unable to locate", ""},
        {{SettingsEntry(kRootTemp + 'x')}, 74, "", "settings.dat is damaged"},
        {{SettingsEntry("\x03\0\0\0"s + Record(u"\\W\\") + Number(2) + "\\"), "W/a=1", "b=2"},
         74,
         "step 1: deleted \\W\\a (1 byte)\ntotal: 1 file ",
         "settings.dat is damaged"},
        {{"Program Files/Fennelbright/"},
         78,
         "",
         ": no settings.dat in \\Program Files\\Fennelbright: no options are ticked\n"},
        {{"Program Files/Fennelbright/settings.dat/"},
         74,
         "",
         "settings.dat in \\Program Files\\Fennelbright cannot be read, so nothing is done"},
        {{SettingsEntry(noRoom)},
         74,
         "step 18: not written [HKLM\\System\\GDI\\GLYPHCACHE] \"limit\" (File too large)\n",
         "changes to the registry are not stored: registry.reg: cannot write: File too large",
         kQuietTweaks + glyphs + std::string(5000, ';'),
         "ulimit -S -f 8",
         74},
    };
    for (const auto& run : cases) {
        for (const bool strict : {false, true}) {
            SCOPED_TRACE(run.report + run.errors + (strict ? ", strict" : ""));
            const TemporaryDevice device(run.files);
            chmod((device.files() + "/Temp/locked").c_str(), 0444);
            WriteFile(device.registry(), run.registry);
            const Outcome outcome = RunProgram({"--device", device.path(), "--report", "silent",
                                                strict ? "--strict" : "--no-display"},
                                               run.before);
            EXPECT_EQ(outcome.exitCode, strict ? run.strict : run.exitCode);
            EXPECT_NE(outcome.output.find(run.report), std::string::npos) << outcome.output;
            EXPECT_NE(outcome.errors.find(run.errors), std::string::npos) << outcome.errors;
            EXPECT_EQ(outcome.output.find("wrote"), std::string::npos);
            EXPECT_EQ(ReadFile(device.registry()), run.registry);
            EXPECT_EQ(std::distance(std::filesystem::directory_iterator(device.path()), {}),
                      run.report.empty() ? 2 : 3)
                << "with last-run.txt where there was something to do";
        }
    }
}

TEST(Program, AReportWithoutAReaderDoesNotStopTheWork) {
    const TemporaryDevice device({"Temp/a=1", "Temp/b=2", SettingsEntry(kRootTemp)});
    const std::string pipe = device.path() + "/pipe";
    const Outcome outcome =
        RunProgram({"--device", device.path(), "--report", "silent"},
                   "mkfifo " + pipe + "; exec 3<>" + pipe + " >" + pipe + " 3<&-");
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_NE(outcome.errors.find("cannot write the report"), std::string::npos);
    EXPECT_EQ(device.Listing().size(), 4U);
}

// A page that cannot be written is not done; last-run.txt costs no exit code.
TEST(Program, ReportsReplaceOnlyRegularFilesOutsideOfTheDevice) {
    const struct {
        std::string page;  // "d" leads to the device
        Entries before;    // beside it
        int exitCode;
        std::string says;
    } cases[] = {
        {"page", {}, 0, ""},
        {"page", {"../page=old", "../d/last-run.txt=old"}, 0, ""},
        {"page", {"../target=old", "../page>target"}, 74, "page: cannot replace it: it is not a r"},
        {"page", {"../page/"}, 74, "page: cannot replace it: it is not a regular file"},
        {"page", {"../page=locked"}, 74, "page: cannot replace it: it is read-only"},
        {"none/page", {}, 74, "/none/page: cannot write the report: No such file"},
        {"d/files/Temp/page", {}, 74, "it would be in the device directory"},
        {"d/registry.reg", {}, 74, "it would be in the device directory"},
        {"page", {"../d/last-run.txt>../t", "../t=old"}, 0, "last-run.txt: cannot replace it"},
        {"page", {"../d/last-run.txt/"}, 0, "last-run.txt: cannot replace it: it is not a reg"},
        {"page", {"../d/last-run.txt=locked"}, 0, "last-run.txt: cannot replace it: it is read"},
    };
    const auto read = [](const std::string& path) {
        return std::filesystem::is_regular_file(path) ? ReadFile(path) : "";
    };
    for (const auto& each : cases) {
        const TemporaryDevice place({"../d/files/Temp/a=1",
                                     "../d/files/" + SettingsEntry(kRootTemp),
                                     "../d/registry.reg=" + std::string(kQuietTweaks)});
        const std::string device = place.path() + "/d";
        place.Make(each.before);
        for (const std::string& path : {place.path() + "/page", device + "/last-run.txt"}) {
            if (read(path) == "locked") {
                chmod(path.c_str(), 0444);
            }
        }
        const Outcome outcome = RunProgram({"--device", device, "--report=json", "--strict", "s",
                                            "--report-html", place.path() + '/' + each.page});
        SCOPED_TRACE(outcome.errors);
        const std::string last = read(device + "/last-run.txt");
        EXPECT_EQ(outcome.exitCode, each.exitCode);
        EXPECT_TRUE(outcome.output.ends_with(':' + std::to_string(each.exitCode) + "}\n"));
        EXPECT_NE(outcome.errors.find(each.says), std::string::npos);
        EXPECT_EQ(outcome.errors.empty(), each.says.empty());
        EXPECT_EQ(read(place.path() + "/page").ends_with("</html>\n"), each.exitCode == 0);
        EXPECT_EQ(last.starts_with("step 3: deleted \\Temp\\a (1 byte)\ntotal: 1 "),
                  !each.says.starts_with("last"));
        EXPECT_EQ(read(device + "/registry.reg"), kQuietTweaks);
        EXPECT_EQ(RunProgram({"--device", device, "silent"}).errors, "") << "nothing to do";
        EXPECT_EQ(read(device + "/last-run.txt"), last);
    }
}

TEST(Program, MemoryThatRunsOutEndsTheRunAndChangesNothing) {
#if defined(__SANITIZE_ADDRESS__)
    GTEST_SKIP() << "the sanitizer needs more memory than that";
#endif
    const TemporaryDevice device(
        {"Temp/keep=1", SettingsEntry(kRootTemp), kQuietRegistry + std::string(8'000'000, ';')});
    const Outcome outcome = RunProgram({"--device", device.path(), "silent"}, "ulimit -S -v 12288");
    EXPECT_EQ(outcome.exitCode, 71);
    EXPECT_NE(outcome.errors.find("out of memory"), std::string::npos);
    EXPECT_TRUE(std::filesystem::exists(device.files() + "/Temp/keep"));
}

TEST(Program, TheWorstOfSeveralExitCodesCounts) {
    int better = 0;
    for (const int worse : {78, 74, 69, 66, 65, 75, 73, 1, 71, 139}) {
        EXPECT_EQ(platform::WorseExitCode(worse, better), worse);
        EXPECT_EQ(platform::WorseExitCode(better, worse), worse);
        better = worse;
    }
}

}  // namespace
