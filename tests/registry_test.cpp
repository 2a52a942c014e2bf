#include "platform/registry.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "core/device_store.h"

namespace platform {
namespace {

using namespace std::string_literals;

const std::string kFile =
    "[HKEY_LOCAL_MACHINE\\Software\\Apps\\One]\n\"InstallDir\"=\"\\\\One\"\n\"Size\"=dword:"
    "00000007\n"
    "[HKEY_LOCAL_MACHINE\\Software\\Apps\\two]\n\"InstallDir\"=\"\\\\Two\"\n"
    "[HKEY_LOCAL_MACHINE\\Software\\Apps\\Three\\Sub]\n";
constexpr const WCHAR* kApps = u"\\Software\\\\Apps\\";

class RegistryTest : public testing::Test {
  protected:
    void SetUp() override {
        std::string path = testing::TempDir() + "registry-XXXXXX";
        ASSERT_NE(mkdtemp(path.data()), nullptr);
        path_ = path;
        directory_ = Descriptor(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        Write(kFile);
    }
    void TearDown() override { std::filesystem::remove_all(path_); }

    std::string File() const { return path_ / "registry.reg"; }
    void Write(const std::string& content) const { std::ofstream(File()) << content; }
    std::string Content() const {
        std::ifstream file(File(), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    ino_t Number() const {
        struct stat status {};
        return stat(File().c_str(), &status) == 0 ? status.st_ino : 0;
    }
    std::ptrdiff_t EntryCount() const {
        return std::distance(std::filesystem::directory_iterator(path_), {});
    }
    std::unique_ptr<Registry> Open() const {
        std::string error;
        std::unique_ptr<Registry> registry = Registry::Open(directory_.get(), error);
        EXPECT_EQ(registry == nullptr, !error.empty()) << error;
        return registry;
    }

    std::filesystem::path path_;
    Descriptor directory_;
};

HKEY OpenKey(Registry& registry, const std::u16string& path) {
    HKEY key = nullptr;
    registry.RegOpenKeyExW(HKEY_LOCAL_MACHINE, path.c_str(), 0, 0, &key);
    return key;
}

HKEY OpenApps(Registry& registry) {
    return OpenKey(registry, kApps);
}

// The code of a query, or the value's text where it is a readable one.
std::u16string Text(Registry& registry, HKEY key, const WCHAR* name) {
    std::array<WCHAR, 100> text{};
    DWORD size = sizeof text;
    const LONG code = registry.RegQueryValueExW(key, name, nullptr, nullptr,
                                                reinterpret_cast<BYTE*>(text.data()), &size);
    return code == ERROR_SUCCESS ? std::u16string(text.data(), size / 2) : u"none";
}

LONG SetText(Registry& registry, HKEY key, const WCHAR* name, const std::u16string& text) {
    return registry.RegSetValueExW(key, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(text.data()),
                                   static_cast<DWORD>(2 * text.size()));
}

LONG SetNumber(Registry& registry, HKEY key, const WCHAR* name, DWORD number) {
    return registry.RegSetValueExW(key, name, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&number),
                                   sizeof number);
}

std::string Names(Registry& registry, HKEY key) {
    std::string names;
    std::array<WCHAR, 20> name{};
    DWORD size = name.size();
    for (DWORD index = 0; registry.RegEnumKeyExW(key, index, name.data(), &size, nullptr, nullptr,
                                                 nullptr, nullptr) == ERROR_SUCCESS;
         ++index, size = name.size()) {
        names.append(name.data(), name.data() + size) += ' ';
    }
    return names;
}

TEST_F(RegistryTest, OnlyOpenHandlesWork) {
    const auto registry = Open();
    const HKEY apps = OpenApps(*registry);
    ASSERT_NE(apps, nullptr);
    HKEY key = apps;
    EXPECT_EQ(registry->RegOpenKeyExW(apps, u"none", 0, KEY_ALL_ACCESS, &key),
              ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(key, nullptr);
    EXPECT_EQ(registry->RegOpenKeyExW(apps, nullptr, 0, KEY_ALL_ACCESS, &key), ERROR_SUCCESS);
    EXPECT_NE(key, apps);
    EXPECT_EQ(registry->RegCloseKey(apps), ERROR_SUCCESS);
    EXPECT_EQ(Names(*registry, key), "One two Three ");
    for (const HKEY closed : {apps, HKEY{nullptr}, HKEY{INVALID_HANDLE_VALUE}}) {
        DWORD size = 0;
        WCHAR name[4] = {};
        EXPECT_EQ(registry->RegCloseKey(closed), ERROR_INVALID_HANDLE);
        EXPECT_EQ(registry->RegOpenKeyExW(closed, u"One", 0, 0, &key), ERROR_INVALID_HANDLE);
        EXPECT_EQ(registry->RegQueryValueExW(closed, u"a", nullptr, nullptr, nullptr, &size),
                  ERROR_INVALID_HANDLE);
        EXPECT_EQ(SetNumber(*registry, closed, u"a", 1), ERROR_INVALID_HANDLE);
        EXPECT_EQ(
            registry->RegEnumKeyExW(closed, 0, name, &size, nullptr, nullptr, nullptr, nullptr),
            ERROR_INVALID_HANDLE);
        EXPECT_EQ(registry->RegDeleteKeyW(closed, u"One"), ERROR_INVALID_HANDLE);
    }
    EXPECT_EQ(registry->RegCloseKey(HKEY_LOCAL_MACHINE), ERROR_SUCCESS);
    EXPECT_NE(OpenApps(*registry), nullptr);
}

TEST_F(RegistryTest, QueriesCountBytesAndTouchNothingBehindThem) {
    const auto registry = Open();
    const HKEY key = OpenKey(*registry, u"software\\APPS\\one");
    std::array<BYTE, 12> data{};
    data.fill(0xEE);
    DWORD size = 0;
    DWORD type = 0;
    EXPECT_EQ(registry->RegQueryValueExW(key, u"INSTALLDIR", nullptr, &type, nullptr, &size), 0);
    EXPECT_EQ(size, 10U);
    EXPECT_EQ(type, REG_SZ);
    size = 9;
    EXPECT_EQ(registry->RegQueryValueExW(key, u"InstallDir", nullptr, nullptr, data.data(), &size),
              ERROR_MORE_DATA);
    EXPECT_EQ(size, 10U);
    EXPECT_EQ(data[0], 0xEE);
    EXPECT_EQ(registry->RegQueryValueExW(key, u"InstallDir", nullptr, nullptr, data.data(), &size),
              ERROR_SUCCESS);
    EXPECT_EQ(data, (std::array<BYTE, 12>{'\\', 0, 'O', 0, 'n', 0, 'e', 0, 0, 0, 0xEE, 0xEE}));
    size = 4;
    EXPECT_EQ(registry->RegQueryValueExW(key, u"Size", nullptr, &type, data.data(), &size), 0);
    EXPECT_EQ(data[0], 7);
    EXPECT_EQ(type, REG_DWORD);
    EXPECT_EQ(registry->RegQueryValueExW(key, u"Size", nullptr, nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(registry->RegQueryValueExW(key, u"Size", nullptr, nullptr, data.data(), nullptr),
              ERROR_INVALID_PARAMETER);
    EXPECT_EQ(registry->RegQueryValueExW(key, nullptr, nullptr, nullptr, nullptr, &size),
              ERROR_FILE_NOT_FOUND);
}

TEST_F(RegistryTest, AnUnterminatedTextComesBackAsItWasSet) {
    const auto registry = Open();
    const HKEY key = OpenKey(*registry, u"Software\\Apps\\One");
    EXPECT_EQ(Text(*registry, key, u"installdir"), u"\\One\0"s);
    const ino_t number = Number();
    EXPECT_EQ(SetText(*registry, key, u"InstallDir", u"\\One"), ERROR_SUCCESS);
    EXPECT_EQ(Text(*registry, key, u"installdir"), u"\\One");
    EXPECT_TRUE(registry->Flush());
    EXPECT_EQ(Number(), number) << "the file's text is the same";
    EXPECT_EQ(SetText(*registry, key, u"InstallDir", u"\\New"), ERROR_SUCCESS);
    EXPECT_EQ(registry->RegCloseKey(key), ERROR_SUCCESS);
    EXPECT_NE(Number(), number);
    const HKEY again = OpenKey(*registry, u"Software\\Apps\\One");
    EXPECT_EQ(Text(*registry, again, u"InstallDir"), u"\\New");
    EXPECT_EQ(Text(*Open(), again, u"InstallDir"), u"none");
    const auto other = Open();
    EXPECT_EQ(Text(*other, OpenKey(*other, u"Software\\Apps\\One"), u"InstallDir"), u"\\New\0"s);
    EXPECT_EQ(SetText(*registry, again, u"InstallDir", u"\\New\0"s), ERROR_SUCCESS);
    EXPECT_EQ(Text(*registry, again, u"InstallDir"), u"\\New\0"s);
}

TEST_F(RegistryTest, RefusesWhatNoFileHolds) {
    const auto registry = Open();
    const std::u16string longName(256, u'n');
    EXPECT_EQ(SetNumber(*registry, HKEY_USERS, longName.c_str(), 1), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(SetNumber(*registry, HKEY_USERS, u"a\nb", 1), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(registry->RegSetValueExW(HKEY_USERS, u"a", 0, REG_SZ, nullptr, 2),
              ERROR_INVALID_PARAMETER);
    EXPECT_EQ(registry->RegDeleteKeyW(HKEY_LOCAL_MACHINE, u"\\"), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(registry->RegDeleteKeyW(HKEY_LOCAL_MACHINE, u"none"), ERROR_FILE_NOT_FOUND);
    EXPECT_TRUE(registry->Flush());
    EXPECT_EQ(Content(), kFile);
}

TEST_F(RegistryTest, EnumerationClosesGaps) {
    const auto registry = Open();
    const HKEY apps = OpenApps(*registry);
    std::array<WCHAR, 4> name{};
    DWORD size = 3;
    const auto enumerate = [&](DWORD index) {
        return registry->RegEnumKeyExW(apps, index, name.data(), &size, nullptr, nullptr, nullptr,
                                       nullptr);
    };
    EXPECT_EQ(enumerate(0), ERROR_MORE_DATA);
    size = 4;
    EXPECT_EQ(enumerate(0), ERROR_SUCCESS);
    EXPECT_EQ(size, 3U);
    EXPECT_EQ(registry->RegDeleteKeyW(apps, u"ONE"), ERROR_SUCCESS);
    size = 4;
    EXPECT_EQ(enumerate(0), ERROR_SUCCESS);
    EXPECT_EQ(std::u16string(name.data()), u"two");
    EXPECT_EQ(enumerate(2), ERROR_NO_MORE_ITEMS);
    EXPECT_EQ(Names(*registry, apps), "two Three ");
}

TEST_F(RegistryTest, DeletedKeysThatAreOpenSayIt) {
    const auto registry = Open();
    const HKEY sub = OpenKey(*registry, u"Software\\Apps\\Three\\Sub");
    const HKEY apps = OpenApps(*registry);
    EXPECT_EQ(registry->RegDeleteKeyW(apps, u"three"), ERROR_SUCCESS);
    HKEY key = nullptr;
    EXPECT_EQ(registry->RegOpenKeyExW(sub, nullptr, 0, 0, &key), ERROR_KEY_DELETED);
    EXPECT_EQ(SetNumber(*registry, sub, u"a", 1), ERROR_KEY_DELETED);
    EXPECT_EQ(registry->RegDeleteKeyW(sub, u"a"), ERROR_KEY_DELETED);
    EXPECT_EQ(registry->RegCloseKey(sub), ERROR_SUCCESS);
    EXPECT_EQ(registry->RegCloseKey(sub), ERROR_INVALID_HANDLE);
    EXPECT_EQ(Content(), kFile) << "the changed key is still open";
    EXPECT_EQ(registry->RegCloseKey(apps), ERROR_SUCCESS);
    EXPECT_EQ(Content(), kFile.substr(0, kFile.rfind('[')));
}

TEST_F(RegistryTest, ManyChangesThroughOneKeyAreOneWrite) {
    std::string many;
    for (int number = 0; number < 5000; ++number) {
        many += "[HKEY_LOCAL_MACHINE\\Software\\Apps\\" + std::to_string(number) + "]\n";
    }
    Write(many + "[HKEY_USERS]\n");
    const ino_t number = Number();
    const auto registry = Open();
    const HKEY apps = OpenApps(*registry);
    std::array<WCHAR, 20> name{};
    DWORD size = name.size();
    while (registry->RegEnumKeyExW(apps, 0, name.data(), &size, nullptr, nullptr, nullptr,
                                   nullptr) == ERROR_SUCCESS) {
        ASSERT_EQ(registry->RegDeleteKeyW(apps, name.data()), ERROR_SUCCESS);
        size = name.size();
    }
    EXPECT_EQ(Number(), number);
    EXPECT_EQ(registry->RegCloseKey(apps), ERROR_SUCCESS);
    EXPECT_EQ(Content(), "[HKEY_USERS]\n\n[HKEY_LOCAL_MACHINE\\Software\\Apps]\n");
}

TEST_F(RegistryTest, WhatOthersChangedMeanwhileStays) {
    const auto first = Open();
    const auto second = Open();
    const HKEY firstKey = OpenKey(*first, u"Software\\Apps\\One");
    const HKEY secondKey = OpenKey(*second, u"Software\\Apps");
    const HKEY lost = OpenKey(*second, u"Software\\Apps\\One");
    EXPECT_EQ(SetNumber(*first, firstKey, u"Size", 1), ERROR_SUCCESS);
    EXPECT_EQ(first->RegDeleteKeyW(firstKey, u"none"), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(second->RegDeleteKeyW(secondKey, u"two"), ERROR_SUCCESS);
    EXPECT_EQ(first->RegCloseKey(firstKey), ERROR_SUCCESS);
    EXPECT_EQ(second->RegCloseKey(secondKey), ERROR_SUCCESS);
    const std::string both =
        "[HKEY_LOCAL_MACHINE\\Software\\Apps\\One]\n\"InstallDir\"=\"\\\\One\"\n"
        "\"Size\"=dword:00000001\n[HKEY_LOCAL_MACHINE\\Software\\Apps\\Three\\Sub]\n";
    EXPECT_EQ(Content(), both);

    Write("; another editor\n");
    EXPECT_EQ(SetNumber(*second, lost, u"Size", 2), ERROR_SUCCESS);
    EXPECT_TRUE(second->Flush());
    EXPECT_EQ(Content(), "; another editor\n");
    EXPECT_EQ(SetNumber(*second, lost, u"Size", 3), ERROR_KEY_DELETED);
}

TEST_F(RegistryTest, TwoProcessesLoseNothing) {
    static constexpr int kRounds = 60;
    std::array<pid_t, 2> children{};
    for (std::size_t child = 0; child < children.size(); ++child) {
        children[child] = fork();
        if (children[child] != 0) {
            continue;
        }
        const auto registry = Open();
        bool stored = registry != nullptr;
        for (int round = 0; stored && round < kRounds; ++round) {
            const HKEY key = OpenKey(*registry, u"Software\\Apps\\two");
            const std::u16string name = {child == 0 ? u'a' : u'b',
                                         static_cast<WCHAR>(u'0' + round)};
            stored = SetNumber(*registry, key, name.c_str(), 1) == ERROR_SUCCESS &&
                     registry->RegCloseKey(key) == ERROR_SUCCESS;
        }
        _exit(stored ? 0 : 1);
    }
    for (const pid_t child : children) {
        int status = -1;
        EXPECT_EQ(waitpid(child, &status, 0), child);
        EXPECT_EQ(status, 0);
    }
    const auto registry = Open();
    const HKEY key = OpenKey(*registry, u"Software\\Apps\\two");
    for (WCHAR round = u'0'; round < u'0' + kRounds; ++round) {
        for (const WCHAR child : {u'a', u'b'}) {
            const std::array<WCHAR, 3> name = {child, round, 0};
            EXPECT_EQ(
                registry->RegQueryValueExW(key, name.data(), nullptr, nullptr, nullptr, nullptr), 0)
                << int{child} << " " << round - u'0';
        }
    }
    EXPECT_EQ(EntryCount(), 1);
}

TEST_F(RegistryTest, OpensNothingButARegularFile) {
    const std::string file = File();
    const std::array<void (*)(const char*), 5> makers = {
        [](const char* path) { mkdir(path, 0755); },
        [](const char* path) { mkfifo(path, 0666); },
        [](const char* path) { static_cast<void>(symlink("/dev/null", path)); },
        [](const char* path) { static_cast<void>(symlink("none", path)); },
        [](const char* path) { std::ofstream(path) << "[HKEY_USERS]\nx"; },
    };
    for (const auto maker : makers) {
        Write(kFile);
        const auto before = Open();
        ASSERT_EQ(SetNumber(*before, HKEY_USERS, u"a", 1), ERROR_SUCCESS);
        std::filesystem::remove(file);
        maker(file.c_str());
        EXPECT_EQ(Open(), nullptr);
        struct stat old {};
        struct stat now {};
        EXPECT_EQ(lstat(file.c_str(), &old), 0);
        EXPECT_EQ(before->RegCloseKey(HKEY_USERS), ERROR_WRITE_FAULT);
        EXPECT_NE(before->error(), "");
        EXPECT_EQ(lstat(file.c_str(), &now), 0);
        EXPECT_EQ(old.st_ino, now.st_ino);
        std::filesystem::remove(file);
        Write(kFile);
        EXPECT_TRUE(before->Flush()) << "the change was kept";
        EXPECT_EQ(Content(), kFile + "\n[HKEY_USERS]\n\"a\"=dword:00000001\n");
    }
}

TEST_F(RegistryTest, AFaultNamesItsLine) {
    Write("[HKEY_USERS]\n\"a\"=\"b\"\n\"c\"=nonsense!\n");
    std::string error;
    EXPECT_EQ(Registry::Open(directory_.get(), error), nullptr);
    EXPECT_EQ(error.find("registry.reg, line 3: "), 0U) << error;
}

TEST_F(RegistryTest, AFullDiskLeavesTheOldFile) {
    const auto registry = Open();
    const HKEY key = OpenKey(*registry, u"Software\\Apps\\One");
    ASSERT_EQ(SetText(*registry, key, u"Text", std::u16string(9000, u'x')), ERROR_SUCCESS);
    struct rlimit old {};
    getrlimit(RLIMIT_FSIZE, &old);
    const struct rlimit small { 4096, old.rlim_max };
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &small);
    const LONG code = registry->RegCloseKey(key);
    setrlimit(RLIMIT_FSIZE, &old);
    std::signal(SIGXFSZ, handler);
    EXPECT_EQ(code, ERROR_WRITE_FAULT);
    EXPECT_NE(registry->error(), "");
    EXPECT_EQ(Content(), kFile);
    EXPECT_EQ(EntryCount(), 1);
    EXPECT_TRUE(registry->Flush());
    EXPECT_EQ(Content().size(), kFile.size() + 9010);
}

TEST_F(RegistryTest, KeepsTheModeAndLeavesReadOnlyFilesAlone) {
    const auto registry = Open();
    chmod(File().c_str(), 0444);
    ASSERT_EQ(SetNumber(*registry, HKEY_USERS, u"a", 1), ERROR_SUCCESS);
    EXPECT_FALSE(registry->Flush());
    EXPECT_EQ(Content(), kFile);
    chmod(File().c_str(), 0620);
    EXPECT_TRUE(registry->Flush());
    struct stat status {};
    EXPECT_EQ(stat(File().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0620U);
}

TEST_F(RegistryTest, MakesAMissingFileWithTheFirstChange) {
    std::filesystem::remove(File());
    const auto registry = Open();
    EXPECT_EQ(OpenApps(*registry), nullptr);
    EXPECT_TRUE(registry->Flush());
    EXPECT_EQ(EntryCount(), 0);
    EXPECT_EQ(SetNumber(*registry, HKEY_LOCAL_MACHINE, nullptr, 1), ERROR_SUCCESS);
    EXPECT_EQ(registry->RegCloseKey(HKEY_LOCAL_MACHINE), ERROR_SUCCESS);
    const std::string content = Content();
    EXPECT_EQ(content.substr(0, 6), "\xFF\xFEW\0i\0"s);
    const auto again = Open();
    EXPECT_EQ(
        again->RegQueryValueExW(HKEY_LOCAL_MACHINE, nullptr, nullptr, nullptr, nullptr, nullptr),
        0);
}

}  // namespace
}  // namespace platform
