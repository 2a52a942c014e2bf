#include "engine/shortcut_cleaning.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "core/option_table.h"
#include "tests/support/apply_device.h"
#include "tests/support/files_alone.h"

namespace {

// Cleans a Start menu of one shortcut on a device with these entries. Returns whether it stays.
bool Stays(const std::string& target, Entries entries) {
    entries.push_back("Windows/Start Menu/x.lnk=9#" + target);
    const ApplyResult result =
        ApplySilently({std::move(entries), kQuietTweaks, OPT_CLEAN_START_MENU});
    return std::any_of(result.files.begin(), result.files.end(), [](const std::string& entry) {
        return entry.starts_with("Windows/Start Menu/x.lnk");
    });
}

// Texts of shortcuts as they are met on handhelds. Each stays because of its entry, and goes
// without it.
const std::pair<const char*, std::vector<const char*>> kTargets[] = {
    {"windows/solitare.exe=", {"\\windows\\solitare.exe"}},
    {"Windows/iexplore.exe=",
     {"\\windows\\iexplore.exe -home",
      "\\Windows\\iexplore.exe -http://www.example.com?\\Windows\\test.exe,101"}},
    {"My Documents/Templates/Memo.psw=",
     {"\"\\My Documents\\Templates\\Memo.psw\"", "\"\\My\" Documents\\Templates\\Memo.psw"}},
    {"Program Files/Commander/cecmd.exe=", {"\"\\Program Files\\Commander\\cecmd.exe\" \\Windows"}},
    {"Storage card/J9/bin/j9.exe=",
     {"\"\\Storage card\\J9\\bin\\j9.exe\" \"-jcl:ppro11\" \"-Duser.dir=\\Storage "
      "card\\J9\\T\\\""}},
    {"My Documents/Business plan 2.pdf=", {"\\My Documents\\Business plan 2.pdf"}},
    {"Program Files/Two Words/no extension=", {"\\Program Files\\Two Words\\no extension"}},
    {"Program Files/Two Words/app=", {"\\Program Files\\Two Words\\app arg\\x"}},
    {"Windows/x.exe=",
     {"\"\\Windows\\x.exe /a", "\\Windows\\x.exe\"/a\"", "\"\\Windows\\x.exe \" /a",
      "\\Windows\\x.exe\\", "\\Windows\\x.exe.", "\\Windows\\x.exe. /a"}},
    {"My Documents/", {"\"\\My Documents\\\"", "\\My Documents\\ ", "\"\\My Documents. . \" /a"}},
    {"a=", {"\"\\a\"", "\\a"}},
    {"P/a=", {"\\P\\*"}},
    {"P/a.exe=", {"\\P\\?.exe", "\"\\P\\*.exe\" /a", "\"\\P\\?.exe /a"}}};

TEST(ShortcutCleaningTest, KeepsAShortcutWhoseTargetIsThere) {
    for (const auto& [entry, targets] : kTargets) {
        for (const std::string target : targets) {
            EXPECT_TRUE(Stays(target, {entry})) << target;
            EXPECT_FALSE(Stays(target, {})) << target;
        }
    }
}

TEST(ShortcutCleaningTest, KeepsAShortcutWhoseTargetIsNoPath) {
    for (const char* const target : {"", ":MSPIMG", "poutlook.exe tasks", "shellres.dll,-8229",
                                     "http://www.example.com", "\"", "\"calc.exe\" \\a", "C:\\a",
                                     "\\", "\\\\\\", "\\ \\ \\", "\"\\\"", "\"\\\" \\a", "\"\\"}) {
        EXPECT_TRUE(Stays(target, {})) << target;
    }
}

TEST(ShortcutCleaningTest, FindsNothingByAPartAsPatternOrByTheRoot) {
    for (const char* const target :
         {"\\Windows\\*.exe /a", "\\Win* \\a", "\\Win*\\a.exe", "\\Windows\\b*", "\\ no such thing",
          "\\|", "\"\\.", "\"\\a", "\\..\\files", "\\Windows\\.", "\\Windows\\..", "\"\\...."}) {
        EXPECT_FALSE(Stays(target, {"Windows/a.exe="})) << target;
    }
    EXPECT_TRUE(Stays("\\Windows\\a.exe *.txt", {"Windows/a.exe="}));
}

TEST(ShortcutCleaningTest, CleansTheWholeMenuAndCountsWhatWent) {
    const std::string menu = "Windows/Start Menu/";
    Entries stay = {"Windows/", menu};
    for (const char* const path :
         {"Programs/", "Programs/Games/", "Programs/link.lnk>text.txt",
          "Programs/live.lnk=8#\\Windows", "Programs/text.txt=hello", "empty/"}) {
        stay.push_back(menu + path);
    }
    stay.push_back("Windows/elsewhere.lnk=5#\\gone");
    Entries files = stay;
    for (const char* const path : {"dead.lnk", "Programs/dead.txt", "Programs/Games/dead"}) {
        files.push_back(menu + path + "=5#\\gone");
    }
    const ApplyResult result = ApplySilently({files, kQuietTweaks, OPT_CLEAN_START_MENU});
    EXPECT_EQ(result.files, stay);
    EXPECT_EQ(result.bytesCleaned, 21U);
    EXPECT_EQ(result.boxes, Entries());
    EXPECT_EQ(ApplySilently({files, kQuietTweaks, 0}).bytesCleaned, 0U);
}

// Every call fails in its turn, for every reason.
TEST(ShortcutCleaningTest, KeepsWhatItCannotLookForAndTheKeysOfSuchApplications) {
    const Entries files = {"a.exe=", "c.exe d=", "Windows/Start Menu/live.lnk=8#\\a.exe",
                           "Windows/Start Menu/gone.lnk=8#\\b.exe d",
                           "Windows/Start Menu/also live.lnk=8#\\c.exe d"};
    const std::string apps = "[HKEY_LOCAL_MACHINE\\Software\\Apps\\";
    const std::string keys =
        apps + "Live]\n\"InstallDir\"=\"\\\\a.exe\"\n" + apps + "Gone]\n\"InstallDir\"=\"\\\\b\"\n";
    const ApplyInput input{files, kQuietTweaks + keys, OPT_CLEAN_START_MENU | OPT_CLEAR_REGISTRY};
    for (const int reason : {EIO, EMFILE, ENOMEM, EACCES}) {
        const std::string why = std::string("cannot be looked up: ") + std::strerror(reason);
        int noted = 0;
        for (int failing = 1, calls = 1; failing <= calls + 1; ++failing) {
            const ApplyResult result = ApplySilently(input, failing, &calls, reason);
            const auto isNoted = [&result](const std::string& note) {
                return result.notes.find(note) != std::string::npos;
            };
            noted += isNoted(why) ? 1 : 0;
            EXPECT_GE(result.files.size(), isNoted("gone.lnk stays") ? 7U : 6U) << failing;
            EXPECT_NE(result.registry.find(isNoted("Gone stays") ? keys : "Live]"),
                      std::string::npos)
                << failing;
        }
        EXPECT_EQ(noted, 6) << why;
    }
}

// As an ordinary user, whom a mode keeps out.
TEST(ShortcutCleaningTest, KeepsAShortcutIntoADirectoryThatCannotBeRead) {
    const uid_t user = geteuid();
    ASSERT_EQ(seteuid(user == 0 ? 65534 : user), 0);
    {
        const TemporaryDevice device;
        const Entries stay = {"link>shut", "menu/", "menu/link.lnk=5#\\link\\x",
                              "menu/shut.lnk=5#\\shut\\x", "shut/"};
        device.Make(stay);
        device.Make({"menu/gone.lnk=5#\\gone\\x"});
        chmod((device.files() + "/shut").c_str(), 0);
        FilesAlone store(device.OpenFiles());
        const platform::StoreInUse inUse(store);
        testing::internal::CaptureStderr();
        CleanShortcuts(u"\\menu");
        const std::string notes = testing::internal::GetCapturedStderr();
        chmod((device.files() + "/shut").c_str(), 0700);
        EXPECT_EQ(device.Listing(), stay);
        for (const char* const note :
             {"\\menu\\shut.lnk stays: \\shut\\x cannot be looked up: Permission denied",
              "\\menu\\link.lnk stays: \\link\\x cannot be looked up: a symbolic link"}) {
            EXPECT_NE(notes.find(note), std::string::npos) << notes;
        }
    }
    ASSERT_EQ(seteuid(user), 0);
}

}  // namespace
