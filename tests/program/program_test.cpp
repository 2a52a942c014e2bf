// The whole program, run as a user runs it.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>

#include "platform/host/worst_exit_code.h"
#include "tests/support/apply_device.h"
#include "tests/support/settings_bytes.h"

namespace {

// What a finished process said and how it ended.
struct Outcome {
    int exitCode;  // -1 when a signal ended it
    std::string output;
    std::string errors;
};

// What is unusual about a run.
struct Circumstances {
    std::string home = {};      // the user's home directory, if not empty
    bool closedOutput = false;  // nobody reads its standard output
    rlim_t fileSize = RLIM_INFINITY;
    rlim_t memory = RLIM_INFINITY;
};

void Limit(__rlimit_resource resource, rlim_t most) {
    rlimit limit{};
    getrlimit(resource, &limit);
    limit.rlim_cur = std::min(most, limit.rlim_max);
    setrlimit(resource, &limit);
}

[[noreturn]] void BecomeProgram(const std::vector<std::string>& words, const Circumstances& unusual,
                                int output, int errors) {
    dup2(output, STDOUT_FILENO);
    dup2(errors, STDERR_FILENO);
    if (!unusual.home.empty()) {
        setenv("HOME", unusual.home.c_str(), 1);
    }
    unsetenv("DISPLAY");
    unsetenv("WAYLAND_DISPLAY");
    unsetenv("QT_QPA_PLATFORM");
    std::vector<char*> arguments = {const_cast<char*>("fennelbright")};
    for (const std::string& word : words) {
        arguments.push_back(const_cast<char*>(word.c_str()));
    }
    arguments.push_back(nullptr);
    Limit(RLIMIT_FSIZE, unusual.fileSize);
    Limit(RLIMIT_AS, unusual.memory);
    execv(FENNELBRIGHT_PROGRAM, arguments.data());
    _exit(127);
}

// A pipe whose reader has gone.
int OpenBrokenPipe() {
    int ends[2] = {-1, -1};
    EXPECT_EQ(pipe2(ends, O_CLOEXEC), 0);
    close(ends[0]);
    return ends[1];
}

// Runs the built program with these words, without a display.
Outcome RunProgram(const std::vector<std::string>& words, const Circumstances& unusual = {}) {
    const TemporaryDevice scratch;
    const std::string outputPath = scratch.path() + "/output";
    const std::string errorsPath = scratch.path() + "/errors";
    constexpr int flags = O_CREAT | O_WRONLY | O_CLOEXEC;
    const platform::Descriptor output(unusual.closedOutput ? OpenBrokenPipe()
                                                           : open(outputPath.c_str(), flags, 0600));
    const platform::Descriptor errors(open(errorsPath.c_str(), flags, 0600));
    const pid_t child = fork();
    if (child == 0) {
        BecomeProgram(words, unusual, output.get(), errors.get());
    }
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, ReadFile(outputPath),
            ReadFile(errorsPath)};
}

using namespace std::string_literals;

// A settings.dat beside the program at its usual place.
std::string SettingsEntry(const std::string& content) {
    return "Program Files/Fennelbright/settings.dat=" + content;
}

const std::string kFixedDirectories = "\x1C\0\0\0"s;
const std::string kRootTemp = "\x04\0\0\0"s;

Outcome RunReported(const std::string& device) {
    return RunProgram({"--device", device, "--report", "silent"});
}

TEST(Program, ExitCodesTellWhatWentWrong) {
    const TemporaryDevice device;
    device.Make({"Temp/keep=1", SettingsEntry(kRootTemp)});
    const TemporaryDevice noDevice;
    std::filesystem::remove(noDevice.files());
    const TemporaryDevice linked;
    std::filesystem::remove(linked.files());
    std::filesystem::create_symlink(device.files(), linked.files());
    const TemporaryDevice damaged;
    WriteFile(damaged.path() + "/registry.reg", "REGEDIT4\n\n[HKEY_CURRENT_USER\n");
    const std::string& taken = device.path();
    const struct {
        Entries words;
        int exitCode;
        std::string says;  // part of standard error, or of standard output where it ends well
    } cases[] = {
        {{}, 64, "no device directory"},
        {{"--device", taken, "--dry-run", "silent"}, 64, "--dry-run"},
        {{"--device", taken, "silent", "--unknown"}, 64, "--unknown"},
        {{"--device", "", "silent"}, 64, "empty"},
        {{"--device", taken, "--device", taken, "silent"}, 64, "more than one"},
        {{"--device", taken, "--boot", "silent"}, 64, "each shortcut has its own"},
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
        {{"--version"}, 0, "fennelbright "},
    };
    const Entries before = device.Listing();
    for (const auto& expected : cases) {
        const Outcome outcome = RunProgram(expected.words);
        SCOPED_TRACE(testing::PrintToString(expected.words) + outcome.errors);
        EXPECT_EQ(outcome.exitCode, expected.exitCode);
        const std::string& said = expected.exitCode == 0 ? outcome.output : outcome.errors;
        EXPECT_NE(said.find(expected.says), std::string::npos);
        EXPECT_FALSE(outcome.errors.starts_with('['));
    }
    EXPECT_EQ(RunProgram({"--device", taken, "silent"}, {.home = taken + "/."}).exitCode, 66);
    EXPECT_EQ(device.Listing(), before);
    WriteFile(noDevice.path() + "/registry.reg", "");
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
        const TemporaryDevice device;
        device.Make({"Temp/a=1", settings, "Windows/StartUp/x.LNK="s + shortcut,
                     "Windows/StartUp/readme.txt=1"});
        const Outcome outcome = RunProgram({"--device", device.path(), "--boot", "--report"});
        EXPECT_EQ(outcome.exitCode, 0);
        EXPECT_EQ(outcome.output.find("deleted \\Temp\\a") != std::string::npos, runs);
        EXPECT_EQ(outcome.errors.find("x.LNK is skipped") == std::string::npos, runs);
        EXPECT_EQ(outcome.errors.find("nothing to run") == std::string::npos, runs);
    }
    const TemporaryDevice unread;
    unread.Make({"Windows/StartUp/x.lnk>x.lnk"});
    EXPECT_EQ(RunProgram({"--device", unread.path(), "--boot"}).errors.find("nothing"),
              std::string::npos);
    const TemporaryDevice device;
    device.Make({"Windows/StartUp/x.lnk=9#"s + "\\Program Files\\Fennelbright\\Fennelbright.exe"});
    EXPECT_EQ(RunProgram({"--device", device.path(), "--boot"}).exitCode, 69);
}

TEST(Program, HostileTreesAreCleanedAndNothingElseIs) {
    const TemporaryDevice outside;
    outside.Make({"keep=1", "dir/keep=2"});
    const TemporaryDevice device;
    device.Make({"Temp/out>" + outside.files(), "Temp/up>../../..", "Temp/loop>loop", "Temp/self>.",
                 "Temp/pipe|", "Temp/file=f", "Temp/s/dead>/none", "Windows/w.exe=w",
                 "Windows/Temp>" + outside.files() + "/dir", "Temp/" + std::string(255, 'l') + "=x",
                 "Temp/a\\b:*?\"<|\x01 =y", "Temp/not\xFFutf8\xC3=z", "Temp/\xEF\x80\xAA/in=i",
                 "Temp/ ... /x=1", "Temp/d/T=1", "Temp/d/t=2", "Temp/D/T=3",
                 SettingsEntry(kFixedDirectories)});
    WriteFile(device.path() + "/registry.reg", kQuietTweaks);
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

TEST(Program, OnlyDirectoriesThatSettingsNameWholeAreCleaned) {
    const std::string whole = "\x03\0\0\0"s + Record(u"\\Work\\Cache\\") + Record(u"\\W2\\");
    const std::size_t firstEnd = 4 + Record(u"\\Work\\Cache\\").size();
    for (std::size_t length = 0; length <= whole.size() + 1; ++length) {
        const TemporaryDevice device;
        device.Make({"Work/keep=1", "Work/Cache/a=2", "W2/b=3", "c=4",
                     SettingsEntry((whole + 'x').substr(0, length))});
        WriteFile(device.path() + "/registry.reg", kQuietTweaks);
        const Outcome outcome = RunProgram({"--device", device.path(), "--strict", "silent"});
        const bool isDamaged = length != whole.size();
        ASSERT_EQ(outcome.exitCode, isDamaged ? 74 : 0);
        ASSERT_EQ(outcome.errors.find("settings.dat is damaged") != std::string::npos, isDamaged);
        const Entries after = device.Listing();
        const auto has = [&after](const std::string& entry) {
            return std::find(after.begin(), after.end(), entry) != after.end();
        };
        ASSERT_TRUE(has("Work/keep=1") && has("c=4")) << "cut at " << length;
        ASSERT_EQ(has("Work/Cache/a=2"), length < firstEnd) << "cut at " << length;
        ASSERT_EQ(has("W2/b=3"), length < whole.size()) << "cut at " << length;
    }
}

TEST(Program, ASecondRunOnADeviceIsRefused) {
    const TemporaryDevice device;
    device.Make({"Temp/keep=1", SettingsEntry(kRootTemp),
                 "Windows/StartUp/x.lnk=9#\"\\Program Files\\Fennelbright\\Fennelbright.exe\" s"});
    WriteFile(device.path() + "/.fennelbright-new-0123456789abcdef", "half");
    const Entries before = device.Listing();
    for (const std::string& held : {device.path(), device.files()}) {
        const platform::Descriptor other(open(held.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        ASSERT_EQ(flock(other.get(), LOCK_EX), 0);
        for (const std::string task : {"silent", "--boot", "--"}) {
            const Outcome outcome = RunProgram({"--device", device.path(), task});
            EXPECT_EQ(outcome.exitCode, 75) << task;
            EXPECT_NE(outcome.errors.find(device.path() + ": in use"), std::string::npos);
        }
    }
    EXPECT_EQ(device.Listing(), before);
    WriteFile(device.path() + "/registry.reg", kQuietTweaks);
    EXPECT_EQ(RunProgram({"--device", device.path(), "--boot"}).exitCode, 0);
    EXPECT_FALSE(std::filesystem::exists(device.path() + "/.fennelbright-new-0123456789abcdef"));
    EXPECT_FALSE(std::filesystem::exists(device.files() + "/Temp/keep"));
}

TEST(Program, NothingChangesWhereTheRegistryCannotBeStored) {
    const TemporaryDevice device;
    device.Make({"Temp/keep=1", SettingsEntry(kRootTemp)});
    const std::string registry = device.path() + "/registry.reg";
    WriteFile(registry, kQuietTweaks);
    chmod(registry.c_str(), 0444);
    const Outcome outcome = RunReported(device.path());
    EXPECT_EQ(outcome.exitCode, 73);
    EXPECT_NE(outcome.errors.find("registry.reg: cannot write it: it is read-only"),
              std::string::npos);
    EXPECT_TRUE(std::filesystem::exists(device.files() + "/Temp/keep"));
}

TEST(Program, WhatCouldNotBeDoneIsReported) {
    const std::string noRoom = "\x00\0\x10\0\x01\0\0\0"s;  // the font cache, its second position
    const std::string glyphs = "[HKEY_LOCAL_MACHINE\\System\\GDI\\GLYPHCACHE]\n";
    const struct {
        Entries files;
        std::pair<int, int> exitCodes;  // the second with --strict
        std::string report, errors;     // a part of each
        std::string registry = kQuietTweaks;
        rlim_t fileSize = RLIM_INFINITY;
    } cases[] = {
        {{"Temp/a=1", SettingsEntry(kRootTemp)}, {0, 0}, ", 0 not done", ""},
        {{"Temp/locked=1", SettingsEntry(kRootTemp)},
         {0, 74},
         "step 3: not deleted \\Temp\\locked (it is read-only)\ntotal: 0 files",
         ""},
        {{"Temp>Windows", "Windows/", SettingsEntry(kRootTemp)},
         {0, 74},
         "step 3: not read \\Temp\\ (a symbolic link, which is not followed)",
         ""},
        {{SettingsEntry(kRootTemp)}, {0, 74}, "", "[Error] Unable to locate", ""},
        {{"Program Files/Fennelbright/"},
         {0, 78},
         "",
         ": no settings.dat in \\Program Files\\Fennelbright: no options are ticked\n"},
        {{"Program Files/Fennelbright/settings.dat/"},
         {0, 74},
         "",
         "settings.dat in \\Program Files\\Fennelbright cannot be read, so nothing is done"},
        {{SettingsEntry(noRoom)},
         {74, 74},
         "step 18: not written [HKLM\\System\\GDI\\GLYPHCACHE] \"limit\" (File too large)\n",
         "changes to the registry are not stored: registry.reg: cannot write: File too large",
         kQuietTweaks + glyphs + std::string(5000, ';'),
         4096},
    };
    for (const auto& run : cases) {
        for (const bool strict : {false, true}) {
            SCOPED_TRACE(run.report + run.errors + (strict ? ", strict" : ""));
            const TemporaryDevice device;
            device.Make(run.files);
            chmod((device.files() + "/Temp/locked").c_str(), 0444);
            const std::string registry = device.path() + "/registry.reg";
            WriteFile(registry, run.registry);
            const Outcome outcome = RunProgram({"--device", device.path(), "--report", "silent",
                                                strict ? "--strict" : "--no-display"},
                                               {.fileSize = run.fileSize});
            EXPECT_EQ(outcome.exitCode, strict ? run.exitCodes.second : run.exitCodes.first);
            EXPECT_NE(outcome.output.find(run.report), std::string::npos) << outcome.output;
            EXPECT_NE(outcome.errors.find(run.errors), std::string::npos) << outcome.errors;
            EXPECT_EQ(outcome.output.find("wrote"), std::string::npos);
            EXPECT_EQ(ReadFile(registry), run.registry);
        }
    }
}

TEST(Program, AReportThatNobodyReadsDoesNotStopTheWork) {
    const TemporaryDevice device;
    device.Make({"Temp/a=1", "Temp/b=2", SettingsEntry(kRootTemp)});
    const Outcome outcome =
        RunProgram({"--device", device.path(), "--report", "silent"}, {.closedOutput = true});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_NE(outcome.errors.find("cannot write the report"), std::string::npos);
    EXPECT_EQ(device.Listing().size(), 4U);
}

TEST(Program, MemoryThatRunsOutEndsTheRunAndChangesNothing) {
#if defined(__SANITIZE_ADDRESS__)
    GTEST_SKIP() << "the sanitizer needs more memory than that";
#endif
    const TemporaryDevice device;
    device.Make({"Temp/keep=1", SettingsEntry(kRootTemp)});
    WriteFile(device.path() + "/registry.reg", kQuietTweaks + std::string(8'000'000, ';'));
    const Outcome outcome =
        RunProgram({"--device", device.path(), "silent"}, {.memory = rlim_t{12} << 20});
    EXPECT_EQ(outcome.exitCode, 71);
    EXPECT_NE(outcome.errors.find("out of memory"), std::string::npos);
    EXPECT_TRUE(std::filesystem::exists(device.files() + "/Temp/keep"));
}

TEST(Program, TheWorstOfSeveralExitCodesCounts) {
    const std::vector<int> worstFirst = {139, 71, 1, 73, 75, 65, 66, 69, 74, 78, 0};
    for (std::size_t worse = 0; worse < worstFirst.size(); ++worse) {
        for (std::size_t better = worse; better < worstFirst.size(); ++better) {
            EXPECT_EQ(platform::WorseExitCode(worstFirst[worse], worstFirst[better]),
                      worstFirst[worse]);
            EXPECT_EQ(platform::WorseExitCode(worstFirst[better], worstFirst[worse]),
                      worstFirst[worse]);
        }
    }
}

TEST(Program, ABoxIsOneLineAndWaitsForNobody) {
    const TemporaryDevice device;
    device.Make({"Temp/keep=1"});
    const Outcome outcome =
        RunProgram({"--device", device.path(), "--no-display", "--module", "\\x.exe", "silent"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.errors, "[Error!!!] Failed retrieving application directory\n");
    EXPECT_EQ(
        RunProgram({"--device", device.path(), "--strict", "--module", "\\x.exe", "s"}).exitCode,
        74);
    EXPECT_EQ(device.Listing(), (Entries{"Temp/", "Temp/keep=1"}));
}

}  // namespace
