#include "platform/registry/registry_key_operations.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <filesystem>

#include "core/file_operations.h"
#include "tests/support/temporary_device.h"

namespace platform {
namespace {

using namespace std::string_literals;

const std::string kApps = "[HKEY_LOCAL_MACHINE\\Software\\Apps";
const std::string kFile = kApps + "\\One]\n\"InstallDir\"=\"\\\\One\"\n\"Size\"=dword:00000007\n" +
                          kApps + "\\two]\n\"InstallDir\"=\"\\\\Two\"\n" + kApps +
                          "\\Three\\Sub]\n";

// The operations, with a result where the platform's have an address for it.
class Keys {
  public:
    explicit Keys(std::unique_ptr<Registry> registry) : registry_(std::move(registry)) {}

    Registry* operator->() const { return registry_.get(); }
    HKEY Open(const std::u16string& path) const {
        HKEY key = nullptr;
        registry_->RegOpenKeyExW(HKEY_LOCAL_MACHINE, path.c_str(), 0, 0, &key);
        return key;
    }
    LONG Reopen(HKEY key, const WCHAR* subkey, HKEY& result) const {
        return registry_->RegOpenKeyExW(key, subkey, 0, KEY_ALL_ACCESS, &result);
    }
    LONG Query(HKEY key, const WCHAR* name, BYTE* data, DWORD* size, DWORD* type = nullptr) const {
        return registry_->RegQueryValueExW(key, name, nullptr, type, data, size);
    }
    LONG Enumerate(HKEY key, DWORD index, WCHAR* name, DWORD* size) const {
        return registry_->RegEnumKeyExW(key, index, name, size, nullptr, nullptr, nullptr, nullptr);
    }
    // The characters of a value, or "none".
    std::u16string Text(HKEY key, const WCHAR* name) const {
        WCHAR text[100] = {};
        DWORD size = sizeof text;
        const LONG code = Query(key, name, reinterpret_cast<BYTE*>(text), &size);
        return code == ERROR_SUCCESS ? std::u16string(text, size / 2) : u"none";
    }
    LONG Set(HKEY key, const WCHAR* name, const std::u16string& text) const {
        return registry_->RegSetValueExW(key, name, 0, REG_SZ,
                                         reinterpret_cast<const BYTE*>(text.data()),
                                         static_cast<DWORD>(2 * text.size()));
    }
    LONG Set(HKEY key, const WCHAR* name, DWORD number) const {
        return registry_->RegSetValueExW(key, name, 0, REG_DWORD,
                                         reinterpret_cast<const BYTE*>(&number), sizeof number);
    }
    std::u16string Names(HKEY key) const {
        std::u16string names;
        WCHAR name[20];
        DWORD size = 20;
        for (DWORD index = 0; Enumerate(key, index, name, &size) == ERROR_SUCCESS; ++index) {
            names.append(name, size) += u' ';
            size = 20;
        }
        return names;
    }

  private:
    std::unique_ptr<Registry> registry_;
};

class RegistryTest : public testing::Test {
  protected:
    void SetUp() override { Write(kFile); }

    std::string File() const { return device_.registry(); }
    void Write(const std::string& content) const { WriteFile(File(), content); }
    std::string Content() const { return ReadFile(File()); }
    ino_t Number() const {
        struct stat status {};
        return lstat(File().c_str(), &status) == 0 ? status.st_ino : 0;
    }
    Keys Open() const { return Keys(device_.OpenRegistry()); }

    TemporaryDevice device_;
    const Descriptor directory_{open(device_.path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)};
};

TEST_F(RegistryTest, AHandleThatIsNotOpenIsInvalid) {
    const Keys keys = Open();
    const HKEY apps = keys.Open(u"\\Software\\\\Apps\\");
    ASSERT_NE(apps, nullptr);
    HKEY key = apps;
    EXPECT_EQ(keys.Reopen(apps, u"none", key), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(key, nullptr);
    EXPECT_EQ(keys.Reopen(apps, nullptr, key), ERROR_SUCCESS);
    EXPECT_NE(key, apps);
    EXPECT_EQ(keys->RegCloseKey(apps), ERROR_SUCCESS);
    EXPECT_EQ(keys.Names(key), u"One two Three ");
    for (const HKEY closed : {apps, HKEY{nullptr}, HKEY{INVALID_HANDLE_VALUE}}) {
        DWORD size = 0;
        WCHAR name[4] = {};
        EXPECT_EQ(keys->RegCloseKey(closed), ERROR_INVALID_HANDLE);
        EXPECT_EQ(keys.Reopen(closed, u"One", key), ERROR_INVALID_HANDLE);
        EXPECT_EQ(keys.Query(closed, u"a", nullptr, &size), ERROR_INVALID_HANDLE);
        EXPECT_EQ(keys.Set(closed, u"a", 1), ERROR_INVALID_HANDLE);
        EXPECT_EQ(keys.Enumerate(closed, 0, name, &size), ERROR_INVALID_HANDLE);
        EXPECT_EQ(keys->RegDeleteKeyW(closed, u"One"), ERROR_INVALID_HANDLE);
    }
    EXPECT_EQ(keys->RegCloseKey(HKEY_LOCAL_MACHINE), ERROR_SUCCESS);
    EXPECT_NE(keys.Open(u"Software"), nullptr);
}

TEST_F(RegistryTest, QueriesCountBytesAndTouchNothingAfterThem) {
    const Keys keys = Open();
    const HKEY key = keys.Open(u"software\\APPS\\one");
    std::string data(12, '\xEE');
    BYTE* const bytes = reinterpret_cast<BYTE*>(data.data());
    DWORD size = 0;
    DWORD type = 0;
    EXPECT_EQ(keys.Query(key, u"INSTALLDIR", nullptr, &size, &type), ERROR_SUCCESS);
    EXPECT_EQ(size, 10U);
    EXPECT_EQ(type, REG_SZ);
    size = 9;
    EXPECT_EQ(keys.Query(key, u"InstallDir", bytes, &size), ERROR_MORE_DATA);
    EXPECT_EQ(size, 10U);
    EXPECT_EQ(data, std::string(12, '\xEE'));
    EXPECT_EQ(keys.Query(key, u"InstallDir", bytes, &size), ERROR_SUCCESS);
    EXPECT_EQ(data, "\\\0O\0n\0e\0\0\0\xEE\xEE"s);
    size = 4;
    EXPECT_EQ(keys.Query(key, u"Size", bytes, &size, &type), ERROR_SUCCESS);
    EXPECT_EQ(data[0], 7);
    EXPECT_EQ(type, REG_DWORD);
    EXPECT_EQ(keys.Query(key, u"Size", nullptr, nullptr), ERROR_SUCCESS);
    EXPECT_EQ(keys.Query(key, u"Size", bytes, nullptr), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(keys.Query(key, nullptr, nullptr, &size), ERROR_FILE_NOT_FOUND);
}

TEST_F(RegistryTest, AnUnterminatedTextComesBackAsItWasSet) {
    const Keys keys = Open();
    const HKEY key = keys.Open(u"Software\\Apps\\One");
    EXPECT_EQ(keys.Text(key, u"installdir"), u"\\One\0"s);
    const ino_t number = Number();
    EXPECT_EQ(keys.Set(key, u"InstallDir", u"\\One"), ERROR_SUCCESS);
    EXPECT_EQ(keys.Text(key, u"installdir"), u"\\One");
    EXPECT_TRUE(keys->StoreRegistry().has_value());
    EXPECT_EQ(Number(), number) << "the file's text is the same";
    EXPECT_EQ(keys.Set(key, u"InstallDir", u"\\New"), ERROR_SUCCESS);
    EXPECT_EQ(keys->RegCloseKey(key), ERROR_SUCCESS);
    EXPECT_EQ(Number(), number) << "changes wait to be stored";
    EXPECT_TRUE(keys->StoreRegistry().has_value());
    EXPECT_NE(Number(), number);
    const HKEY again = keys.Open(u"Software\\Apps\\One");
    EXPECT_EQ(keys.Text(again, u"InstallDir"), u"\\New");
    const Keys other = Open();
    EXPECT_EQ(other.Text(other.Open(u"Software\\Apps\\One"), u"InstallDir"), u"\\New\0"s);
    EXPECT_EQ(keys.Set(again, u"InstallDir", u"\\New\0"s), ERROR_SUCCESS);
    EXPECT_EQ(keys.Text(again, u"InstallDir"), u"\\New\0"s);
}

TEST_F(RegistryTest, NamesAndDataThatNoFileHoldsAreRefused) {
    const Keys keys = Open();
    EXPECT_EQ(keys.Set(HKEY_USERS, std::u16string(256, u'n').c_str(), 1), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(keys.Set(HKEY_USERS, u"a\nb", 1), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(keys->RegSetValueExW(HKEY_USERS, u"a", 0, REG_SZ, nullptr, 2),
              ERROR_INVALID_PARAMETER);
    EXPECT_EQ(keys->RegDeleteKeyW(HKEY_LOCAL_MACHINE, u"\\"), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(keys->RegDeleteKeyW(HKEY_LOCAL_MACHINE, u"none"), ERROR_FILE_NOT_FOUND);
    EXPECT_TRUE(keys->StoreRegistry().has_value());
    EXPECT_EQ(Content(), kFile);
}

TEST_F(RegistryTest, ADeletedSubkeyMovesThoseAfterItUp) {
    const Keys keys = Open();
    const HKEY apps = keys.Open(u"Software\\Apps");
    WCHAR name[4] = {};
    DWORD size = 3;
    EXPECT_EQ(keys.Enumerate(apps, 0, name, &size), ERROR_MORE_DATA);
    size = 4;
    EXPECT_EQ(keys.Enumerate(apps, 0, name, &size), ERROR_SUCCESS);
    EXPECT_EQ(size, 3U);
    EXPECT_EQ(std::u16string(name), u"One");
    EXPECT_EQ(keys->RegDeleteKeyW(apps, u"ONE"), ERROR_SUCCESS);
    EXPECT_EQ(keys.Names(apps), u"two Three ");
    EXPECT_EQ(keys.Enumerate(apps, 2, name, &size), ERROR_NO_MORE_ITEMS);
}

TEST_F(RegistryTest, OperationsOnADeletedKeyThatIsOpenGiveKeyDeleted) {
    const Keys keys = Open();
    const HKEY sub = keys.Open(u"Software\\Apps\\Three\\Sub");
    const HKEY apps = keys.Open(u"Software\\Apps");
    EXPECT_EQ(keys->RegDeleteKeyW(apps, u"three"), ERROR_SUCCESS);
    HKEY key = nullptr;
    EXPECT_EQ(keys.Reopen(sub, nullptr, key), ERROR_KEY_DELETED);
    EXPECT_EQ(keys.Set(sub, u"a", 1), ERROR_KEY_DELETED);
    EXPECT_EQ(keys->RegDeleteKeyW(sub, u"a"), ERROR_KEY_DELETED);
    EXPECT_EQ(keys->RegCloseKey(sub), ERROR_SUCCESS);
    EXPECT_EQ(keys->RegCloseKey(sub), ERROR_INVALID_HANDLE);
    EXPECT_TRUE(keys->StoreRegistry().has_value());
    EXPECT_EQ(Content(), kFile.substr(0, kFile.rfind('[')));
}

TEST_F(RegistryTest, ChangesOfAnotherProgramStay) {
    const Keys first = Open();
    const Keys second = Open();
    const HKEY firstKey = first.Open(u"Software\\Apps\\One");
    const HKEY secondKey = second.Open(u"Software\\Apps");
    EXPECT_EQ(first.Set(firstKey, u"Size", 1), ERROR_SUCCESS);
    EXPECT_EQ(second->RegDeleteKeyW(secondKey, u"two"), ERROR_SUCCESS);
    EXPECT_TRUE(first->StoreRegistry().has_value());
    EXPECT_TRUE(second->StoreRegistry().has_value());
    EXPECT_EQ(Content(), kApps + "\\One]\n\"InstallDir\"=\"\\\\One\"\n\"Size\"=dword:00000001\n" +
                             kApps + "\\Three\\Sub]\n");
}

TEST_F(RegistryTest, OpensNothingButARegularFile) {
    const std::string file = File();
    void (*const makers[])(const char*) = {
        [](const char* path) { mkdir(path, 0755); }, [](const char* path) { mkfifo(path, 0666); },
        [](const char* path) { static_cast<void>(symlink("/dev/null", path)); },
        [](const char* path) { static_cast<void>(symlink("none", path)); },
        [](const char* path) { WriteFile(path, "[HKEY_USERS]\nx"); }};
    for (const auto maker : makers) {
        Write(kFile);
        const Keys before = Open();
        ASSERT_EQ(before.Set(HKEY_USERS, u"a", 1), ERROR_SUCCESS);
        std::filesystem::remove(file);
        maker(file.c_str());
        EXPECT_FALSE(Registry::Open(directory_.get()).has_value());
        const ino_t number = Number();
        const Status stored = before->StoreRegistry();
        ASSERT_FALSE(stored.has_value());
        EXPECT_TRUE(stored.error().object.starts_with("registry.reg")) << stored.error().object;
        EXPECT_EQ(Number(), number);
        std::filesystem::remove(file);
        Write(kFile);
        EXPECT_TRUE(before->StoreRegistry().has_value()) << "the change was kept";
        EXPECT_EQ(Content(), kFile + "\n[HKEY_USERS]\n\"a\"=dword:00000001\n");
    }
}

TEST_F(RegistryTest, WhatCouldNotBeStoredWaitsForTheNextStoring) {
    const Keys keys = Open();
    ASSERT_EQ(keys.Set(HKEY_USERS, u"a", 1), ERROR_SUCCESS);
    chmod(File().c_str(), 0444);
    EXPECT_FALSE(keys->StoreRegistry().has_value());
    EXPECT_EQ(keys->ChangesOfRegistry().stored, 0U);
    EXPECT_EQ(Content(), kFile);
    int asked = 0;
    keys->OfferRetry([&](const platform::Failure&) {
        chmod(File().c_str(), asked == 1 ? 0644 : 0444);
        return asked++ < 2;
    });
    EXPECT_TRUE(keys->StoreRegistry().has_value());
    EXPECT_EQ(asked, 2);
    EXPECT_EQ(keys->ChangesOfRegistry().stored, 1U);
    EXPECT_EQ(Content(), kFile + "\n[HKEY_USERS]\n\"a\"=dword:00000001\n");
}

}  // namespace
}  // namespace platform
