// The searches, the startup list and what becomes of what is selected in them.

#include <gtest/gtest.h>
#include <sys/xattr.h>

#include <algorithm>

#include "core/application.h"
#include "platform/text/readable_text.h"
#include "search/startup_list.h"
#include "search/tree_search.h"
#include "shell/main_windows.h"
#include "tests/support/apply_device.h"
#include "tests/support/files_alone.h"

namespace {

// Keeps what is added to the one list, and counts the windows.
class OneList : public CollectedBoxes {
  public:
    HWND CreateWindowExW(DWORD, const WCHAR* className, const WCHAR*, DWORD, int, int, int, int,
                         HWND, HMENU, HINSTANCE, void*) override {
        made.push_back(platform::ReadableText(className));
        return this;
    }
    BOOL DestroyWindow(HWND /*window*/) override {
        ++destroyed;
        return 1;
    }
    LRESULT SendMessageW(HWND /*window*/, UINT message, WPARAM wParam, LPARAM lParam) override {
        if (message == LB_ADDSTRING) {
            entries.push_back(platform::ReadableText(
                reinterpret_cast<const WCHAR*>(lParam)));  // NOLINT(performance-no-int-to-ptr)
        } else if (message == LB_SETHORIZONTALEXTENT) {
            extents.push_back(wParam);
        }
        return 0;
    }

    Entries entries;
    Entries made;
    std::vector<WPARAM> extents;
    int destroyed = 0;
};

class SearchTest : public testing::Test {
  protected:
    void SetUp() override { g_DisplayWindow = &display_; }
    void TearDown() override { g_DisplayWindow = nullptr; }

    // What a search lists, sorted.
    template <typename Search>
    Entries Found(Search search) {
        FilesAlone store(device_.OpenFiles());
        const platform::StoreInUse storeInUse(store);
        const platform::WindowsInUse windowsInUse(windows_);
        windows_.entries.clear();
        windows_.made.clear();
        windows_.destroyed = 0;
        search();
        std::sort(windows_.entries.begin(), windows_.entries.end());
        return windows_.entries;
    }

    TemporaryDevice device_;
    OneList windows_;

  private:
    CDisplayWindow display_;
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
    EXPECT_EQ(Found([] { SearchTempDirectories(nullptr, u"\\"); }), expected);
    EXPECT_EQ(windows_.made, (Entries{"SEARCHING", "STATIC"})) << "one indicator for the search";
    EXPECT_EQ(windows_.destroyed, 2);
    EXPECT_EQ(Found([] { SearchTempDirectories(nullptr, u"\\none"); }), Entries());
    EXPECT_EQ(windows_.made.size(), 2U) << "the indicator comes before the first look";
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
        EXPECT_EQ(Found([wanted] { SearchFiles(nullptr, wanted, u"\\"); }), found);
        EXPECT_EQ(windows_.made.empty(), wanted == nullptr);
    }
}

TEST_F(SearchTest, TheExtentFollowsTheLongestPathAlone) {
    const std::string name(23, 'n');
    device_.Make({"d1/" + name + ".one=", "d2/" + name + "xxxx.two=", "d3/" + name + "yyyy.two=",
                  "d4/" + name + "xxxxx.six="});
    for (const WCHAR* const extension : {u"one", u"two", u"one", u"six"}) {
        Found([extension] { SearchFiles(nullptr, extension, u"\\"); });
    }
    EXPECT_EQ(windows_.extents, (std::vector<WPARAM>{210, 216}));
}

TEST_F(SearchTest, PathsThatDoNotFitAreNotCut) {
    std::string path;
    for (int level = 0; level < 5; ++level) {
        path.append(200, 'x').append(1, '/');
    }
    for (const std::size_t length : {13U, 14U, 1U}) {
        device_.Make({std::string(path).append(length, 'y').append(".tmp=")});
    }
    EXPECT_EQ(Found([] { SearchFiles(nullptr, u"tmp", u"\\"); }).size(), 2U);
}

TEST_F(SearchTest, TheStartupListHasTheShortcutsAlone) {
    device_.Make({"Windows/StartUp/b.lnk=", "Windows/StartUp/A.LNK=", "Windows/StartUp/x.lnk.bak=",
                  "Windows/StartUp/sub/c.lnk="});
    EXPECT_EQ(Found([] { FillStartupList(nullptr); }), (Entries{"A.LNK", "b.lnk"}));
}

}  // namespace
