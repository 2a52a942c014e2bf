// The contract of the device store, on the real device and on every wrapper around it.

#include "core/file_operations.h"

#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <tuple>

#include "platform/device/assembled_device.h"
#include "platform/display/retrying_store.h"
#include "platform/display/window_repainting_store.h"
#include "platform/report/report_lines.h"
#include "platform/report/reporting_store.h"
#include "platform/text/readable_text.h"
#include "platform/text/text_encoding.h"
#include "tests/support/failing_store.h"
#include "tests/support/temporary_device.h"

namespace {

using Paths = std::vector<std::u16string>;

using Wrapper = std::unique_ptr<platform::DeviceStore>;

const struct Implementation {
    const char* name;
    Wrapper (*wrap)(platform::DeviceStore& store);
    bool isRehearsed = false;
} kImplementations[] = {
    {"AssembledDevice", [](auto& /*store*/) { return Wrapper(); }},
    {"RehearsedDevice", [](auto& /*store*/) { return Wrapper(); }, true},
    {"ReportingStore",
     [](auto& store) {
         static platform::ReportLines report(std::fopen("/dev/null", "w"));
         static platform::RunLog log("");
         return Wrapper(new platform::ReportingStore(store, {&report}, log));
     }},
    {"WindowRepaintingStore",
     [](auto& store) { return Wrapper(new platform::WindowRepaintingStore(store, [] {})); }},
    {"RetryingStore",
     [](auto& store) {
         return Wrapper(new platform::RetryingStore(store, [](const auto&) { return false; }));
     }},
    {"FailingStore", [](auto& store) { return Wrapper(new FailingStore(store, 0)); }}};

// Paths that an operation refuses, by its reason.
using Refusals = std::vector<std::pair<LONG, Paths>>;

template <typename Operation>
void ExpectRefused(Operation operation, const Refusals& refusals) {
    for (const auto& [reason, paths] : refusals) {
        for (const std::u16string& path : paths) {
            EXPECT_FALSE(operation(path.c_str())) << platform::ReadableText(path);
            EXPECT_EQ(GetLastError(), static_cast<DWORD>(reason)) << platform::ReadableText(path);
        }
    }
}

class DeviceStoreTest : public testing::TestWithParam<Implementation> {
  protected:
    void Open() {
        if (GetParam().isRehearsed) {
            before_ = RealEntries();
            real_ = platform::AssembledDevice::Rehearsed(
                std::make_unique<platform::RehearsedTree>(device_.OpenFiles()), u"\\Program.exe",
                device_.OpenRegistry(), ThrowRestarted);
        } else {
            real_ = std::make_unique<platform::AssembledDevice>(
                device_.OpenFiles(), u"\\Program.exe", device_.OpenRegistry(), ThrowRestarted);
            real_->RecoverFromKilledRuns();
        }
        wrapper_ = GetParam().wrap(*real_);
        inUse_ = std::make_unique<platform::StoreInUse>(store());
    }

    // The host's entries with their sizes and the times of their last changes.
    Entries RealEntries() const {
        Entries entries;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(device_.path())) {
            struct stat status {};
            lstat(entry.path().c_str(), &status);
            entries.push_back(entry.path().string() + ' ' + std::to_string(status.st_size) + ' ' +
                              std::to_string(status.st_ctim.tv_sec) + '.' +
                              std::to_string(status.st_ctim.tv_nsec));
        }
        std::sort(entries.begin(), entries.end());
        return entries;
    }

    static Entries WithoutTargets(Entries entries) {
        for (std::string& entry : entries) {
            entry.resize(std::min(entry.size(),
                                  entry.find('>') + 1 == 0 ? entry.size() : entry.find('>') + 1));
        }
        return entries;
    }

    void AddListing(Entries& entries, const std::u16string& path) {
        for (const std::string& name : Search(path + u"\\*")) {
            const bool isDirectory = name.ends_with('\\');
            const std::u16string below =
                path + u'\\' + *platform::WideText(name.substr(0, name.size() - isDirectory));
            std::string line = platform::Utf8Text(below.substr(1)) + (isDirectory ? "/" : ">");
            std::replace(line.begin(), line.end(), '\\', '/');
            if (std::FILE* const file = isDirectory ? nullptr : _wfopen(below.c_str(), u"rb")) {
                line.back() = '=';
                for (int byte = 0; (byte = std::fgetc(file)) != EOF;) {
                    line += static_cast<char>(byte);
                }
                std::fclose(file);
            }
            entries.push_back(line);
            if (isDirectory) {
                AddListing(entries, below);
            }
        }
    }

    // What the device's files are by now, and what they are to the host where nothing is rehearsed.
    Entries Listing() {
        if (!GetParam().isRehearsed) {
            return WithoutTargets(device_.Listing());
        }
        EXPECT_EQ(RealEntries(), before_);
        Entries entries;
        AddListing(entries, u"");
        std::sort(entries.begin(), entries.end());
        return entries;
    }

    // Entries that a search finds, in UTF-8 and sorted, directories with a backslash after them.
    static Entries Search(const std::u16string& pattern) {
        Entries names;
        WIN32_FIND_DATA data;
        const HANDLE find = FindFirstFileW(pattern.c_str(), &data);
        for (BOOL found = find != INVALID_HANDLE_VALUE; found != 0;
             found = FindNextFileW(find, &data)) {
            const bool isDirectory = (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
            names.push_back(platform::ReadableText(data.cFileName) + (isDirectory ? "\\" : ""));
        }
        FindClose(find);
        std::sort(names.begin(), names.end());
        return names;
    }

    // Of a shortcut; "none" when the store says that it is none.
    static std::string TargetOf(const WCHAR* path, int limit = 1024) {
        std::u16string buffer(1024, u'x');
        return SHGetShortcutTarget(path, buffer.data(), limit) != 0
                   ? platform::ReadableText(buffer.c_str())
                   : "none";
    }

    platform::DeviceStore& store() { return wrapper_ != nullptr ? *wrapper_ : *real_; }

    static bool Exists(const std::u16string& path) { return !Search(path).empty(); }

    static BOOL Control(DWORD code) {
        return KernelIoControl(code, nullptr, 0, nullptr, 0, nullptr);
    }

    std::string HostPath(const std::string& path) const { return device_.files() + '/' + path; }

    TemporaryDevice device_;

  private:
    Entries before_;
    std::unique_ptr<platform::AssembledDevice> real_;
    Wrapper wrapper_;
    std::unique_ptr<platform::StoreInUse> inUse_;
};

INSTANTIATE_TEST_SUITE_P(Stores, DeviceStoreTest, testing::ValuesIn(kImplementations),
                         [](const auto& tested) { return tested.param.name; });

TEST_P(DeviceStoreTest, SearchesFindWhatThePatternNames) {
    device_.Make({"ff/a.lnk=", "ff/b.LNK=", "ff/c.lnk.bak=", "ff/noext=", "ff/.hid=", "ff/sub/",
                  "ff/sub/deep=", "ff/st*r=", "empty/"});
    Open();
    const std::pair<const char*, Paths> cases[] = {
        {".hid a.lnk b.LNK c.lnk.bak noext st<F02A>r sub\\", {u"\\ff\\*", u"\\ff\\*.*"}},
        {"noext", {u"\\FF\\NO*T.*"}},
        {"", {u"\\ff\\sub.", u"\\ff\\*.", u"\\ff\\.hi?d"}},
        {"a.lnk b.LNK", {u"\\FF\\*.lnk"}},
        {"a.lnk", {u"\\FF\\A.LNK", u"\\\\ff\\\\a.lnk"}},
        {"c.lnk.bak", {u"ff\\\\*.bak", u"\\ff\\*.l*b?k"}},
        {"ff\\", {u"\\ff", u"\\ff\\"}},
        {"\\", {u"\\"}},
        {"empty\\ ff\\", {u"\\*"}},
        {"st<F02A>r", {u"\\ff\\st\uF02Ar"}}};
    for (const auto& [found, patterns] : cases) {
        for (const std::u16string& pattern : patterns) {
            EXPECT_EQ(Search(pattern), Words(found)) << platform::ReadableText(pattern);
        }
    }
    device_.Make({"ff/link>sub"});
    const auto finds = [](const WCHAR* pattern) {
        WIN32_FIND_DATA data;
        return FindFirstFileW(pattern, &data) != INVALID_HANDLE_VALUE;
    };
    ExpectRefused(finds,
                  {{ERROR_PATH_NOT_FOUND,
                    {u"", u"\\ff\\a.lnk\\", u"\\none\\*", u"\\f*\\a.lnk", u"\\ff\\sub\\..\\a.lnk",
                     u"\\ff\\.\\a.lnk", u"\\ff\\a.lnk\\*"}},
                   {ERROR_FILE_NOT_FOUND,
                    {u"\\ff\\none", u"\\ff\\none*", u"\\empty\\*", u"\\ff\\..", u"\\ff/a.lnk"}},
                   {ERROR_CANT_ACCESS_FILE, {u"\\ff\\link\\x", u"\\ff\\LINK\\*"}}});
}

TEST_P(DeviceStoreTest, RecordsHaveSizesAndAttributes) {
    device_.Make({"big=", "locked=abc", "hidden/", "plain/"});
    ASSERT_EQ(truncate(HostPath("big").c_str(), (3LL << 32) + 7), 0);
    chmod(HostPath("locked").c_str(), 0444);
    const bool hidden = setxattr(HostPath("hidden").c_str(), "user.DOSATTRIB", "0x6", 3, 0) == 0;
    Open();
    constexpr DWORD kHidden = FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM;
    const std::tuple<std::u16string, DWORD, DWORD, DWORD> cases[] = {
        {u"\\big", FILE_ATTRIBUTE_NORMAL, 3, 7},
        {u"\\locked", FILE_ATTRIBUTE_READONLY, 0, 3},
        {u"\\plain", FILE_ATTRIBUTE_DIRECTORY, 0, 0},
        {u"\\hidden", FILE_ATTRIBUTE_DIRECTORY | (hidden ? kHidden : 0), 0, 0},
    };
    for (const auto& [path, attributes, high, low] : cases) {
        // A single entry and one of a list have the same record.
        for (const std::u16string& pattern : {path, path + u"*"}) {
            WIN32_FIND_DATA data{};
            FindClose(FindFirstFileW(pattern.c_str(), &data));
            EXPECT_EQ(data.dwFileAttributes, attributes);
            EXPECT_EQ(data.nFileSizeHigh, high);
            EXPECT_EQ(data.nFileSizeLow, low);
        }
    }
}

TEST_P(DeviceStoreTest, DeletesWhatMayBeDeleted) {
    device_.Make(
        Words("d/a=1 d/a2=123 d/locked=2 d/link>../outside d/loop>loop d/pipe| d/sub/ "
              "d/full/x=3 outside/keep=4"));
    chmod(HostPath("d/locked").c_str(), 0444);
    Open();
    ExpectRefused(DeleteFileW, {{ERROR_ACCESS_DENIED, {u"\\d\\locked", u"\\d\\sub"}},
                                {ERROR_FILE_NOT_FOUND, {u"\\d\\none", u"\\d\\*", u"", u"\\"}},
                                {ERROR_PATH_NOT_FOUND, {u"\\d\\a\\"}},
                                {ERROR_CANT_ACCESS_FILE, {u"\\d\\link\\x"}}});
    for (const std::u16string& path : Paths{u"\\d\\a", u"\\D\\LINK", u"\\d\\loop", u"\\d\\pipe"}) {
        EXPECT_NE(DeleteFileW(path.c_str()), 0) << platform::ReadableText(path);
    }
    EXPECT_EQ(RemoveDirectoryW(u"\\d\\full"), 0);
    EXPECT_NE(DeleteFileW(u"\\d\\a2"), 0);
    EXPECT_EQ(store().DeletedSize(), 3U);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_DIR_NOT_EMPTY}) << "success changes nothing";
    EXPECT_EQ(RemoveDirectoryW(u"\\d\\locked"), 0);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_DIRECTORY});
    EXPECT_EQ(RemoveDirectoryW(u"\\"), 0);
    EXPECT_NE(RemoveDirectoryW(u"\\d\\SUB\\"), 0);
    EXPECT_EQ(Listing(),
              (Entries{"d/", "d/full/", "d/full/x=3", "d/locked=2", "outside/", "outside/keep=4"}));
}

TEST_P(DeviceStoreTest, LinksAndDotsOpenNothingOutsideTheTree) {
    TemporaryDevice outside({"secret=s", "dir/secret=s"});
    device_.Make({"link>" + outside.files(), "up>..", "abs>/", "sub/in>" + outside.files() + "/dir",
                  "file=f"});
    Open();
    const Paths paths = {u"\\link\\secret", u"\\up\\registry.reg", u"\\abs\\etc\\passwd",
                         u"\\sub\\in\\secret", u"\\..\\files\\file"};
    for (const std::u16string& path : paths) {
        EXPECT_FALSE(Exists(path)) << platform::ReadableText(path);
        EXPECT_EQ(DeleteFileW(path.c_str()), 0);
        EXPECT_EQ(_wfopen(path.c_str(), u"rb"), nullptr);
        EXPECT_EQ(_wfopen(path.c_str(), u"wb"), nullptr);
        EXPECT_EQ(MoveFileW(u"\\file", path.c_str()), 0);
        EXPECT_EQ(MoveFileW(path.c_str(), u"\\got"), 0);
    }
    EXPECT_EQ(CreateDirectoryW(u"\\link\\new", nullptr), 0);
    EXPECT_EQ(Search(u"\\link\\*"), Entries{});
    EXPECT_EQ(outside.Listing(), (Entries{"dir/", "dir/secret=s", "secret=s"}));
}

TEST_P(DeviceStoreTest, MovesNeverReplace) {
    device_.Make(Words("a/x=1 a/Y=2 b/X=3 b/y=4 a/d/in=5 c/ a/link>x file=6"));
    Open();
    // Names that are taken, in another case too; places that are not there, names that are none,
    // and a directory's own inside.
    const auto move = [](const WCHAR* from) {
        return [from](const WCHAR* to) { return MoveFileW(from, to); };
    };
    ExpectRefused(move(u"\\a\\x"), {{ERROR_ALREADY_EXISTS, {u"\\b\\x"}},
                                    {ERROR_PATH_NOT_FOUND, {u"\\none\\x", u"\\file\\x"}},
                                    {ERROR_DIRECTORY, {u"\\c\\x\\"}},
                                    {ERROR_INVALID_NAME, {u"\\c\\a:b", u""}}});
    ExpectRefused(move(u"\\a\\Y"), {{ERROR_ALREADY_EXISTS, {u"\\b\\y"}}});
    ExpectRefused(move(u"\\a\\none"), {{ERROR_FILE_NOT_FOUND, {u"\\c\\none"}}});
    ExpectRefused(move(u"\\"), {{ERROR_FILE_NOT_FOUND, {u"\\c\\root"}}});
    ExpectRefused(move(u"\\a\\d"), {{ERROR_INVALID_PARAMETER, {u"\\a\\d\\e"}}});
    using Move = std::pair<const WCHAR*, const WCHAR*>;
    for (const auto& [from, to] : {Move{u"\\a\\x", u"\\A\\X"},
                                   {u"\\a\\d", u"\\\\a\\D\\"},
                                   {u"\\A\\X", u"\\c\\New"},
                                   {u"\\a\\d", u"\\c\\d"},
                                   {u"\\a\\link", u"\\c\\link"}}) {
        EXPECT_NE(MoveFileW(from, to), 0) << platform::ReadableText(to);
    }
    EXPECT_EQ(Listing(), Words("a/ a/Y=2 b/ b/X=3 b/y=4 c/ c/New=1 c/d/ c/d/in=5 c/link> "
                               "file=6"));
}

TEST_P(DeviceStoreTest, MovesDuringAWalkSeeNamesTakenMeanwhile) {
    device_.Make({"from/a=1", "from/b=2", "to/A=3"});
    Open();
    WIN32_FIND_DATA data;
    const HANDLE find = FindFirstFileW(u"\\from\\*", &data);
    EXPECT_EQ(MoveFileW(u"\\from\\a", u"\\to\\a"), 0);
    EXPECT_NE(DeleteFileW(u"\\to\\A"), 0);
    EXPECT_NE(MoveFileW(u"\\from\\a", u"\\to\\a"), 0);
    EXPECT_EQ(MoveFileW(u"\\from\\b", u"\\to\\a"), 0);
    EXPECT_EQ(CreateDirectoryW(u"\\to\\A", nullptr), 0);
    EXPECT_NE(CreateDirectoryW(u"\\to\\d", nullptr), 0);
    EXPECT_EQ(MoveFileW(u"\\from\\b", u"\\to\\D"), 0);
    FindClose(find);
    EXPECT_EQ(Listing(), (Entries{"from/", "from/b=2", "to/", "to/a=1", "to/d/"}));
}

TEST_P(DeviceStoreTest, MadeNamesKeepTheirCaseAndAreUnique) {
    device_.Make({"Dir/"});
    Open();
    EXPECT_NE(CreateDirectoryW(u"\\DIR\\M\u00DCll\\", nullptr), 0);
    const auto make = [](const WCHAR* path) { return CreateDirectoryW(path, nullptr); };
    ExpectRefused(make, {{ERROR_ALREADY_EXISTS, {u"\\dIR", u"\\dir\\m\u00FCLL"}},
                         {ERROR_PATH_NOT_FOUND, {u"\\none\\x"}},
                         {ERROR_INVALID_NAME, {u"\\Dir\\a?b", u"\\"}}});
    EXPECT_EQ(Listing(), (Entries{"Dir/", "Dir/M\xC3\x9Cll/"}));
}

TEST_P(DeviceStoreTest, StreamsOpenRegularFilesOnly) {
    device_.Make({"a=text", "dir/", "pipe|", "link>a", "locked=old"});
    chmod(HostPath("locked").c_str(), 0444);
    Open();
    const auto open = [](const WCHAR* mode) {
        return [mode](const WCHAR* path) { return _wfopen(path, mode) != nullptr; };
    };
    for (const WCHAR* const mode : {u"r", u"rb"}) {
        ExpectRefused(open(mode), {{ERROR_ACCESS_DENIED, {u"\\dir", u"\\pipe", u"\\link"}},
                                   {ERROR_FILE_NOT_FOUND, {u"\\none", u"\\", u""}}});
    }
    ExpectRefused(open(u"wb"),
                  {{ERROR_ACCESS_DENIED, {u"\\dir", u"\\pipe", u"\\link", u"\\locked"}},
                   {ERROR_PATH_NOT_FOUND, {u"\\no\\dir"}}});
    ExpectRefused(open(u"a"), {{ERROR_INVALID_PARAMETER, {u"\\a"}}});
}

TEST_P(DeviceStoreTest, WrittenFilesArePublishedWhenClosed) {
    device_.Make({"d/Old=before"});
    chmod(HostPath("d/Old").c_str(), 0640);
    const bool noted = setxattr(HostPath("d/Old").c_str(), "user.note", "n", 1, 0) == 0;
    Open();
    for (const std::u16string& path : Paths{u"\\d\\OLD", u"\\d\\New"}) {
        std::FILE* const file = _wfopen(path.c_str(), u"wb");
        ASSERT_NE(file, nullptr);
        std::fputs("after", file);
        std::fflush(file);
        const bool isOld = path == u"\\d\\OLD" || GetParam().isRehearsed;
        EXPECT_EQ(ReadFile(HostPath("d/Old")), isOld ? "before" : "after");
        EXPECT_FALSE(Exists(u"\\d\\New"));
        EXPECT_EQ(std::fclose(file), 0);
    }
    EXPECT_EQ(Listing(), (Entries{"d/", "d/New=after", "d/Old=after"}));
    struct stat published {};
    ASSERT_EQ(stat(HostPath("d/Old").c_str(), &published), 0);
    EXPECT_EQ(published.st_mode & 0777, 0640U);
    char note = 0;
    EXPECT_EQ(getxattr(HostPath("d/Old").c_str(), "user.note", &note, 1) == 1, noted);
}

TEST_P(DeviceStoreTest, UnpublishedFilesOfEarlierProcessesAreNeverSeenAndGo) {
    device_.Make({".fennelbright-new-0123456789abcdef=half", "sub/", ".fennelbright-new-x=mine"});
    Open();
    EXPECT_EQ(Listing(), (Entries{".fennelbright-new-x=mine", "sub/"}));
    WriteFile(HostPath(".fennelbright-new-00000000000000ff"), "half");
    EXPECT_EQ(Search(u"\\*"), (Entries{".fennelbright-new-x", "sub\\"}));
    EXPECT_EQ(DeleteFileW(u"\\.fennelbright-new-00000000000000ff"), 0);
}

TEST_P(DeviceStoreTest, ASearchThatIsNotOpenIsAnInvalidHandle) {
    device_.Make({"a="});
    Open();
    WIN32_FIND_DATA data;
    const HANDLE find = FindFirstFileW(u"\\*", &data);
    EXPECT_NE(FindClose(find), 0);
    for (const HANDLE handle : {find, HANDLE{nullptr}, INVALID_HANDLE_VALUE}) {
        EXPECT_EQ(FindClose(handle), 0);
        EXPECT_EQ(FindNextFileW(handle, &data), 0);
        EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_HANDLE});
    }
}

TEST_P(DeviceStoreTest, EntriesThatVanishDoNotEndAWalk) {
    for (int index = 0; index < 500; ++index) {
        device_.Make({"d/file" + std::to_string(index) + '='});
    }
    Open();
    WIN32_FIND_DATA data;
    const HANDLE find = FindFirstFileW(u"\\d\\*", &data);
    std::filesystem::remove_all(HostPath("d"));
    int found = 1;
    for (; FindNextFileW(find, &data) != 0; ++found) {
    }
    FindClose(find);
    EXPECT_LT(found, 500);
    EXPECT_FALSE(Exists(u"\\d"));
}

TEST_P(DeviceStoreTest, AShortcutIsKnownByItsContentAndItsTargetIsNotCut) {
    device_.Make({"a.txt=2#\\b", "a.lnk=hello", "dir.lnk/", "link.lnk>a.txt", "pipe.lnk|",
                  "fits=1023#\\" + std::string(1022, 'a'), "long=1024#\\" + std::string(1023, 'a'),
                  "three=3#\\ab", "padded=2#\\a" + std::string(5000, ' ')});
    Open();
    EXPECT_EQ(TargetOf(u"\\A.TXT"), "\\b");
    EXPECT_EQ(TargetOf(u"\\fits"), "\\" + std::string(1022, 'a'));
    EXPECT_EQ(TargetOf(u"\\three", 4), "\\ab");
    EXPECT_EQ(TargetOf(u"\\three", 3), "none");
    EXPECT_EQ(TargetOf(u"\\three", 0), "none");
    for (const WCHAR* const path : {u"\\a.lnk", u"\\dir.lnk", u"\\link.lnk", u"\\pipe.lnk",
                                    u"\\gone.lnk", u"\\", u"", u"\\long", u"\\padded"}) {
        EXPECT_EQ(TargetOf(path), "none") << platform::ReadableText(path);
    }
}

TEST_P(DeviceStoreTest, AShortcutIsMadeUnderANewNameOnly) {
    device_.Make({"dir/", "link>nowhere"});
    Open();
    EXPECT_NE(SHCreateShortcut(u"\\a.lnk", u"\\b c"), 0);
    EXPECT_EQ(TargetOf(u"\\a.lnk"), "\\b c");
    for (const WCHAR* const path :
         {u"\\a.lnk", u"\\A.LNK", u"\\dir", u"\\link", u"\\none\\a.lnk", u"\\c\\", u"\\c*", u""}) {
        EXPECT_EQ(SHCreateShortcut(path, u"\\x"), 0) << platform::ReadableText(path);
    }
    EXPECT_EQ(Listing(), (Entries{"a.lnk=4#\\b c", "dir/", "link>"}));
}

TEST_P(DeviceStoreTest, ANewDirectoryForAMovedOneGetsItsMode) {
    device_.Make({"old/"});
    chmod(HostPath("old").c_str(), 0710);
    Open();
    store().DirectoryMoves(u"\\old", u"\\new");
    EXPECT_NE(CreateDirectoryW(u"\\new", nullptr), 0);
    store().DirectoryMoved(u"\\old", u"\\new");
    if (GetParam().isRehearsed) {
        return;
    }
    struct stat made {};
    ASSERT_EQ(stat(HostPath("new").c_str(), &made), 0);
    EXPECT_EQ(made.st_mode & 0777, 0710U);
}

TEST_P(DeviceStoreTest, RegistryChangesAreReadAtOnceAndKeptByStoringOrARestart) {
    WriteFile(device_.registry(), "[HKEY_USERS\\Key]\n[HKEY_USERS\\Key\\Sub]\n");
    Open();
    HKEY key = nullptr;
    EXPECT_EQ(RegOpenKeyExW(HKEY_USERS, u"\\KEY\\", 0, 0, &key), ERROR_SUCCESS);
    BYTE data[] = {5, 0, 0, 0};
    EXPECT_EQ(RegSetValueExW(key, u"Number", 0, REG_DWORD, data, 4), ERROR_SUCCESS);
    DWORD size = 3;
    DWORD type = 0;
    EXPECT_EQ(RegQueryValueExW(key, u"NUMBER", nullptr, &type, data, &size), ERROR_MORE_DATA);
    EXPECT_EQ(std::pair(type, size), std::pair(REG_DWORD, 4U));
    WCHAR name[4] = {};
    EXPECT_EQ(RegEnumKeyExW(key, 0, name, &size, nullptr, nullptr, nullptr, nullptr),
              ERROR_SUCCESS);
    EXPECT_EQ(RegDeleteKeyW(key, name), ERROR_SUCCESS);
    EXPECT_EQ(store().ChangesOfRegistry().made, 2U);
    EXPECT_EQ(store().ChangesOfRegistry().stored, 0U);
    EXPECT_TRUE(store().StoreRegistry().has_value());
    EXPECT_EQ(store().ChangesOfRegistry().stored, 2U);
    const std::string before = "[HKEY_USERS\\Key]\n[HKEY_USERS\\Key\\Sub]\n";
    const std::string stored = "[HKEY_USERS\\Key]\n\"Number\"=dword:0000000";
    EXPECT_EQ(ReadFile(device_.registry()), GetParam().isRehearsed ? before : stored + "5\n");
    data[0] = 6;
    RegSetValueExW(key, u"Number", 0, REG_DWORD, data, 4);
    EXPECT_EQ(RegCloseKey(key), ERROR_SUCCESS);
    EXPECT_EQ(RegCloseKey(key), ERROR_INVALID_HANDLE);
    EXPECT_FALSE(store().IsChangeLost(3));
    EXPECT_THROW(Control(IOCTL_HAL_REBOOT), DeviceRestarted);
    EXPECT_EQ(ReadFile(device_.registry()), GetParam().isRehearsed ? before : stored + "6\n");
}

TEST_P(DeviceStoreTest, WhatTheSystemCannotDoHasItsReason) {
    device_.Make({"file="});
    Open();
    WCHAR path[] = u"##############";
    EXPECT_EQ(GetModuleFileNameW(nullptr, path, 12), 0U);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INSUFFICIENT_BUFFER});
    EXPECT_EQ(GetModuleFileNameW(nullptr, path, 13), 12U);
    EXPECT_EQ(std::u16string(path), u"\\Program.exe");
    EXPECT_EQ(Control(IOCTL_HAL_REBOOT + 1), 0);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_NOT_SUPPORTED});
    EXPECT_EQ(CreateProcessW(path, path, nullptr, nullptr, 0, 0, nullptr, nullptr, nullptr, path),
              0);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_FILE_NOT_FOUND});
    SetCleanRebootFlag();
    testing::internal::CaptureStderr();
    EXPECT_THROW(Control(IOCTL_HAL_REBOOT), DeviceRestarted);
    EXPECT_NE(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(Listing(), GetParam().isRehearsed ? Entries{"file="} : Entries());
}

}  // namespace
