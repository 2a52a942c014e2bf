// The searches, the startup list and what becomes of what is selected in them.

#include <sys/xattr.h>

#include "core/application.h"
#include "screens/screens.h"
#include "search/startup_list.h"
#include "search/tree_search.h"
#include "shell/main_windows.h"
#include "tests/support/files_alone.h"
#include "tests/support/interactive_program.h"

namespace {

class SearchTest : public testing::Test {
  protected:
    // What a search of the running program lists, sorted.
    template <typename Search>
    Entries Found(Search search) {
        Entries found;
        program_.Run({[&] {
            const HWND list = g_Screens->GetScreenItems(0).ItemAt(11);
            program_.windows.calls.clear();
            search(list);
            calls_ = program_.windows.calls;
            for (const std::u16string& entry : program_.windows.At(list).entries) {
                found.push_back(platform::ReadableText(entry.c_str()));
            }
        }});
        std::sort(found.begin(), found.end());
        return found;
    }

    InteractiveProgram program_;
    const TemporaryDevice& device_ = program_.device;
    Entries calls_;  // that the last search made
};

TEST_F(SearchTest, TemporaryDirectoriesAreFoundByTheirNames) {
    device_.Make({"Temp/in/", "Windows/Temp/", "MyTemp/attempt/", "TEMP/", "plain/temp.txt=1",
                  "secret/Temp/", "plain/x/"});
    const bool hides =
        setxattr((device_.files() + "/secret").c_str(), "user.DOSATTRIB", "0x2", 3, 0) == 0;
    Entries expected = {"\\MyTemp\\", "\\MyTemp\\attempt\\", "\\Temp\\", "\\Windows\\Temp\\"};
    if (!hides) {
        expected.insert(expected.end() - 1, "\\secret\\Temp\\");
    }
    EXPECT_EQ(Found([](HWND list) { SearchTempDirectories(list, u"\\"); }), expected);
    const Entries indicator = calls_;
    EXPECT_EQ(indicator,
              (Entries{"UnregisterClassW SEARCHING", "RegisterClassW SEARCHING",
                       "CreateWindowExW SEARCHING", "UpdateWindow SEARCHING",
                       "ShowWindow SEARCHING 1", "CreateWindowExW STATIC", "UpdateWindow STATIC",
                       "ShowWindow STATIC 1", "DestroyWindow STATIC", "DestroyWindow SEARCHING"}))
        << "one indicator for the search";
    EXPECT_EQ(Found([](HWND list) { SearchTempDirectories(list, u"\\none"); }), Entries());
    EXPECT_EQ(calls_, indicator) << "it comes before the first look";
}

TEST_F(SearchTest, FilesAreFoundByThreeCharactersOfTheirExtensions) {
    device_.Make({"a.tmp=", "B.TMP=", "d/c.tmpfile=", "d/x.tm=", "noext=", "two.dots.tmp=",
                  "tmp.txt=", "end.=", "d/ab=", "d/f.ab=", "d/f.abc=", "link.tmp>none", "D.tmp/"});
    const std::pair<const WCHAR*, Entries> cases[] = {
        {u"TMP", {"\\B.TMP", "\\a.tmp", "\\d\\c.tmpfile", "\\link.tmp", "\\two.dots.tmp"}},
        {u"ab", {"\\d\\f.ab"}},
        {u"", {"\\end."}},
        {u"none", {}},
        {nullptr, {}},
    };
    for (const auto& [extension, found] : cases) {
        const WCHAR* const wanted = extension;
        EXPECT_EQ(Found([wanted](HWND list) { SearchFiles(list, wanted, u"\\"); }), found);
        EXPECT_EQ(calls_.empty(), wanted == nullptr);
    }
}

TEST_F(SearchTest, TheExtentFollowsTheLongestPathAlone) {
    const std::string name(23, 'n');
    device_.Make({"d1/" + name + ".one=", "d2/" + name + "xxxx.two=", "d3/" + name + "yyyy.two=",
                  "d4/" + name + "xxxxx.six="});
    Entries extents;
    for (const WCHAR* const extension : {u"one", u"two", u"one", u"six"}) {
        Found([extension](HWND list) { SearchFiles(list, extension, u"\\"); });
        std::ranges::copy_if(calls_, std::back_inserter(extents),
                             [](const auto& call) { return call.starts_with("LB_"); });
    }
    EXPECT_EQ(extents, (Entries{"LB_SETHORIZONTALEXTENT 210", "LB_SETHORIZONTALEXTENT 216"}));
}

TEST_F(SearchTest, PathsThatDoNotFitAreNotCut) {
    std::string path;
    for (int level = 0; level < 5; ++level) {
        path.append(200, 'x').append(1, '/');
    }
    for (const std::size_t length : {13U, 14U, 1U}) {
        device_.Make({std::string(path).append(length, 'y').append(".tmp=")});
    }
    EXPECT_EQ(Found([](HWND list) { SearchFiles(list, u"tmp", u"\\"); }).size(), 2U);
}

// As in a silent run.
TEST_F(SearchTest, ASearchNeedsNoWindow) {
    FilesAlone store(device_.OpenFiles());
    CollectedBoxes windows;
    const platform::StoreInUse storeInUse(store);
    const platform::WindowsInUse windowsInUse(windows);
    CDisplayWindow page;
    g_DisplayWindow = &page;
    SearchFiles(nullptr, u"tmp", u"\\");
    g_DisplayWindow = nullptr;
    EXPECT_EQ(windows.boxes, Entries());
}

TEST_F(SearchTest, TheStartupListHasTheShortcutsAlone) {
    device_.Make({"Windows/StartUp/b.lnk=", "Windows/StartUp/A.LNK=", "Windows/StartUp/x.lnk.bak=",
                  "Windows/StartUp/sub/c.lnk="});
    EXPECT_EQ(Found(FillStartupList), (Entries{"A.LNK", "b.lnk"}));
}

}  // namespace
