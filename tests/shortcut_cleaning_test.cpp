#include "engine/shortcut_cleaning.h"

#include <gtest/gtest.h>

#include "core/options.h"
#include "engine/shortcut_target.h"
#include "platform/host_text.h"
#include "tests/apply_device.h"

namespace {

// Cleans a Start menu with one shortcut on a device with these entries, "*" alone for the
// shortcut's own directory, and tells whether the shortcut is still there.
bool Stays(const std::string& target, Entries entries) {
    entries.push_back("Windows/Start Menu/x.lnk=9#" + target);
    const ApplyResult result =
        ApplySilently({std::move(entries), kQuietTweaks, OPT_CLEAN_START_MENU});
    return std::any_of(result.files.begin(), result.files.end(), [](const std::string& entry) {
        return entry.starts_with("Windows/Start Menu/x.lnk");
    });
}

// Texts of shortcuts as they are met on handhelds. Each stays because of one entry, and goes
// without it.
constexpr std::pair<const char*, const char*> kTargets[] = {
    {"\\windows\\solitare.exe", "windows/solitare.exe="},
    {"\\windows\\iexplore.exe -home", "windows/iexplore.exe="},
    {"\\Windows\\MyApp.exe parameter1 parameter2", "Windows/MyApp.exe="},
    {"\"\\My Documents\\Templates\\Memo.psw\"", "My Documents/Templates/Memo.psw="},
    {"\"\\My\" Documents\\Templates\\Memo.psw", "My Documents/Templates/Memo.psw="},
    {"\"\\Program Files\\Commander\\cecmd.exe\" \\Windows", "Program Files/Commander/cecmd.exe="},
    {"\\Windows\\iexplore.exe -http://www.example.com?\\Windows\\test.exe,101",
     "Windows/iexplore.exe="},
    {"\"\\Program Files\\Hello\\hello.exe\" /S:file://\\helloscan.html",
     "Program Files/Hello/hello.exe="},
    {"\"\\Program Files\\J9\\PPRO10\\bin\\j9.exe\" -Dconnection.pkgs=com.example.bluetooth "
     "\"-jcl:ppro10\" -cp \"\\Storage Card\\cove\\tester.jar\" org.example.Main",
     "Program Files/J9/PPRO10/bin/j9.exe="},
    {"\"\\Storage card\\J9\\bin\\j9.exe\" \"-jcl:ppro11\" \"-Duser.dir=\\Storage card\\J9\\T\\\"",
     "Storage card/J9/bin/j9.exe="},
    {"\"\\Windows\\ctlpnl.exe\" \\Windows\\sounds.cpl,Volume & Sounds,0", "Windows/ctlpnl.exe="},
    {"\\My Documents\\Business plan 2.pdf", "My Documents/Business plan 2.pdf="},
    {"\\Program Files\\Two Words\\no extension", "Program Files/Two Words/no extension="},
    {"\\Program Files\\Two Words\\app arg\\x", "Program Files/Two Words/app="},
    {"\"\\My Documents\\page.html\" /print", "My Documents/page.html="},
    {"\"\\Windows\\x.exe /a", "Windows/x.exe="},
    {"\\Windows\\x.exe\"/a\"", "Windows/x.exe="},
    {"\"\\My Documents\\\"", "My Documents/"},
    {"\\My Documents\\ ", "My Documents/"},
    {"\"\\Windows\\x.exe \" /a", "Windows/x.exe="},
    {"\\Windows\\x.exe\\", "Windows/x.exe="},
    {"\"\\a\"", "a="},
    {"\\a", "a="},
};

TEST(ShortcutCleaningTest, KeepsWhatLeadsSomewhere) {
    for (const auto& [target, entry] : kTargets) {
        EXPECT_TRUE(Stays(target, {entry})) << target;
        EXPECT_FALSE(Stays(target, {})) << target;
    }
}

TEST(ShortcutCleaningTest, KeepsWhatBeginsWithNoPath) {
    for (const char* const target :
         {"", ":MSPIMG", "poutlook.exe tasks", "shellres.dll,-8229", "http://www.example.com", "\"",
          "\"calc.exe\" \\a", "C:\\a", "\\", "\\\\\\", "\"\\\"", "\"\\\" \\a", "\"\\"}) {
        EXPECT_TRUE(Stays(target, {})) << target;
    }
}

TEST(ShortcutCleaningTest, FindsNothingByPatternOrRoot) {
    for (const char* const target :
         {"\\Windows\\*", "\\Win*", "\"\\Windows\\*.exe\" /a", "\\ no such thing", "\\|", "\"\\.",
          "\"\\a", "\\..\\files", "\\Windows\\.", "\"\\....", "\\ \\ \\"}) {
        EXPECT_FALSE(Stays(target, {"Windows/a.exe="})) << target;
    }
    EXPECT_TRUE(Stays("\\Windows\\a.exe *.txt", {"Windows/a.exe="}));
}

TEST(ShortcutCleaningTest, TellsAPathByItsExtension) {
    const std::pair<const WCHAR*, const char*> cases[] = {
        {u"\"\\Windows\\x.exe\"", "\\Windows\\x.exe"},
        {u"\"\\Windows\\x.exe\" /a", "\\Windows\\x.exe"},
        {u"\"\\Windows\\page.html\"", "\\Windows\\page.htm"},
        {u"\"\\Windows\\x.exe\" /a b.txt", "\\Windows\\x.exe\" /a b.tx"},
        {u"\"\\Windows\\none\" /a", "\\Windows\\none\" /"},
        {u"\"\\x.ab\"", "\\x.ab"},
        {u"\"\\x.\"", "\\x."},
        {u"\"\\a.b.c\"", "\\a.b.c"},
        {u"\"\\\"", "\\"},
        {u"\"\\", ""},
        {u"\"", ""},
        {u"", ""},
    };
    for (const auto& [quoted, path] : cases) {
        EXPECT_EQ(platform::ReadableText(PathByExtension(quoted)), path);
    }
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

// A look that fails tells of a missing target, whatever the reason; a reading that fails does not.
TEST(ShortcutCleaningTest, NeverDeletesWhatItCannotRead) {
    const Entries files = {"Windows/Start Menu/live.lnk=6#\\a.exe", "a.exe="};
    const ApplyInput input{files, kQuietTweaks, OPT_CLEAN_START_MENU};
    int calls = 0;
    ApplySilently(input, 0, &calls);
    int lost = 0;
    for (int failing = 1; failing <= calls; ++failing) {
        lost += ApplySilently(input, failing).bytesCleaned > 0 ? 1 : 0;
    }
    EXPECT_EQ(lost, 1);  // the one look for the target
}

}  // namespace
