#include <gtest/gtest.h>

#include <cstring>

#include "core/application.h"
#include "core/win_main.h"
#include "platform/directory_store.h"
#include "platform/forwarding_store.h"
#include "platform/host_text.h"
#include "tests/apply_device.h"
#include "tests/settings_bytes.h"

namespace {

// All options, and a position for each of the four.
std::string Everything() {
    std::string bytes = Number(0x1FFFFFF);
    for (const WCHAR* const text :
         {u"\\1\\", u"\\2\\", u"log", u"\\8\\", u"\\12\\", u"\\14\\", u"\\15\\", u"\\16\\"}) {
        bytes += Record(text);
    }
    return bytes + Number(2) + Number(1) + Number(0) + Number(1);
}

constexpr char kRegistry[] = R"([HKEY_CURRENT_USER\Software\AvantGo]
"DatabaseLocation"="\\Go"
[HKEY_CURRENT_USER\Software\Microsoft\Windows\CurrentVersion\Explorer\Shell Folders]
"Cache"="\\C"
"History"="\\H"
[HKEY_CURRENT_USER\Software\Microsoft\Windows\CurrentVersion\Internet Settings\5.0\Cache\Content]
"CacheLimit"=dword:00000009
[HKEY_CURRENT_USER\Software\Microsoft\Windows\CurrentVersion\Internet Settings\5.0\Cache\Cookies]
"CacheLimit"=dword:00000009
[HKEY_CURRENT_USER\Software\Microsoft\Windows\CurrentVersion\Internet Settings\5.0\Cache\History]
"CacheLimit"=dword:00000009
[HKEY_LOCAL_MACHINE\Explorer\Shell Folders]
"Favorites"="\\Fav"
"Fonts"="\\Fonts"
"My Documents"="\\My"
[HKEY_LOCAL_MACHINE\Software\Apps\Gone]
"InstallDir"="\\Gone"
[HKEY_LOCAL_MACHINE\System\GDI\GLYPHCACHE]
"limit"=dword:00000009
)";

// Keeps what is done to the device, in its order.
class KeepingStore : public platform::ForwardingStore {
  public:
    using ForwardingStore::ForwardingStore;

    BOOL DeleteFileW(const WCHAR* path) override {
        Keep("delete", path);
        return inner().DeleteFileW(path);
    }
    BOOL SHCreateShortcut(const WCHAR* path, const WCHAR* target) override {
        Keep("make", path);
        return inner().SHCreateShortcut(path, target);
    }
    LONG RegSetValueExW(HKEY key, const WCHAR* name, DWORD reserved, DWORD type, const BYTE* data,
                        DWORD size) override {
        std::u16string value(size / 2, u'\0');
        std::memcpy(value.data(), data, size);
        if (type == REG_DWORD) {
            const std::string digits = std::to_string(value[0]);
            value.assign(digits.begin(), digits.end());
        }
        Keep("set " + platform::ReadableText(name), value);
        return inner().RegSetValueExW(key, name, reserved, type, data, size);
    }
    LONG RegDeleteKeyW(HKEY key, const WCHAR* subkey) override {
        Keep("forget", subkey);
        return inner().RegDeleteKeyW(key, subkey);
    }

    std::string done;

  private:
    void Keep(const std::string& what, const std::u16string& where) {
        done += what + ' ' + platform::ReadableText(where) + ", ";
    }
};

TEST(ApplyOrder, EveryStepOfASilentRunHasItsPlace) {
    const TemporaryDevice device;
    device.Make(
        Words("1/a= 2/a= Temp/a= Windows/Temp/a= C/a= H/a= "
              "8/ 12/ 14/ 15/ 16/ Windows/StartUp/"));
    device.Make({"My Documents/Temp/a=", "Windows/Start Menu/a.lnk=5#\\Gone",
                 "App/settings.dat=" + Everything()});
    WriteFile(device.path() + "/registry.reg", kRegistry + std::string(kQuietTweaks));
    platform::DirectoryStore store(device.OpenFiles(), u"\\App\\Fennelbright.exe",
                                   device.OpenRegistry());
    KeepingStore keeping(store);
    CollectedBoxes windows;
    const platform::StoreInUse storeInUse(keeping);
    const platform::WindowsInUse windowsInUse(windows);
    std::u16string silent = u"silent";
    WinMain(nullptr, nullptr, silent.data(), 0);
    g_Silent = false;
    EXPECT_EQ(windows.boxes, Entries());
    EXPECT_EQ(keeping.done,
              "delete \\1\\a, delete \\2\\a, delete \\Temp\\a, delete \\Windows\\Temp\\a, "
              "delete \\My Documents\\Temp\\a, delete \\C\\a, delete \\H\\a, set Cache \\8\\, "
              "set CacheLimit 3072, set CacheLimit 512, set CacheLimit 256, "
              "set DatabaseLocation \\12\\, forget Gone, set Favorites \\14\\, "
              "set Fonts \\15\\, set My Documents \\16\\, delete \\Windows\\Start Menu\\a.lnk, "
              "set limit 16384, make \\Windows\\StartUp\\Fennelbright.lnk, set AniType 0, "
              "set Animate 0, ");
}

}  // namespace
