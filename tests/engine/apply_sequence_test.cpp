#include "core/application.h"
#include "core/win_main.h"
#include "platform/device/assembled_device.h"
#include "platform/report/report_lines.h"
#include "platform/report/reporting_store.h"
#include "tests/support/apply_device.h"
#include "tests/support/settings_bytes.h"

namespace {

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

constexpr char kReport[] = R"(step 1: deleted \1\a (0 bytes)
step 2: deleted \2\a (0 bytes)
step 3: deleted \Temp\a (0 bytes)
step 4: deleted \Windows\Temp\a (0 bytes)
step 5: deleted \My Documents\Temp\a (0 bytes)
step 6: deleted \C\a (0 bytes)
step 7: deleted \H\a (0 bytes)
step 8: wrote [HKCU\Software\Microsoft\Windows\CurrentVersion\Explorer\Shell Folders] "Cache": "\C" -> "\8\"
step 9: wrote [HKCU\Software\Microsoft\Windows\CurrentVersion\Internet Settings\5.0\Cache\Content] "CacheLimit": 9 -> 3072
step 10: wrote [HKCU\Software\Microsoft\Windows\CurrentVersion\Internet Settings\5.0\Cache\History] "CacheLimit": 9 -> 512
step 11: wrote [HKCU\Software\Microsoft\Windows\CurrentVersion\Internet Settings\5.0\Cache\Cookies] "CacheLimit": 9 -> 256
step 12: wrote [HKCU\Software\AvantGo] "DatabaseLocation": "\Go" -> "\12\"
step 13: deleted key [HKLM\Software\Apps\Gone]
step 14: wrote [HKLM\Explorer\Shell Folders] "Favorites": "\Fav" -> "\14\"
step 15: wrote [HKLM\Explorer\Shell Folders] "Fonts": "\Fonts" -> "\15\"
step 16: wrote [HKLM\Explorer\Shell Folders] "My Documents": "\My" -> "\16\"
step 17: deleted \Windows\Start Menu\a.lnk (7 bytes)
step 18: wrote [HKLM\System\GDI\GLYPHCACHE] "limit": 9 -> 16384
step 19: made shortcut \Windows\StartUp\Fennelbright.lnk to "\App\Fennelbright.exe" silent"
step 20: wrote [HKLM\System\GWE\Menu] "AniType": 6 -> 0
step 21: wrote [HKLM\System\GWE] "Animate": 1 -> 0
)";

TEST(ApplySequence, ASilentRunDoesItsStepsInOrder) {
    const std::string settings = AllOptionsWith(
        {u"\\1\\", u"\\2\\", u"log", u"\\8\\", u"\\12\\", u"\\14\\", u"\\15\\", u"\\16\\"},
        {2, 1, 0, 1});
    const TemporaryDevice device(
        Words("1/a= 2/a= Temp/a= Windows/Temp/a= C/a= H/a= "
              "8/ 12/ 14/ 15/ 16/ Windows/StartUp/"));
    device.Make({"My Documents/Temp/a=", "Windows/Start Menu/a.lnk=5#\\Gone",
                 "App/settings.dat=" + settings});
    WriteFile(device.registry(), kRegistry + std::string(kQuietTweaks));
    platform::AssembledDevice store(device.OpenFiles(), u"\\App\\Fennelbright.exe",
                                    device.OpenRegistry());
    platform::RunLog log("");
    const platform::LogInUse logInUse(log);
    platform::ReportLines lines(stdout);
    platform::ReportingStore recorder(store, {&lines}, log);
    CollectedBoxes windows;
    const platform::StoreInUse storeInUse(recorder);
    const platform::WindowsInUse windowsInUse(windows);
    std::u16string silent = u"silent";
    testing::internal::CaptureStdout();
    WinMain(nullptr, nullptr, silent.data(), 0);
    g_Silent = false;
    EXPECT_TRUE(recorder.StoreRegistry().has_value());
    EXPECT_EQ(windows.boxes, Entries());
    EXPECT_EQ(testing::internal::GetCapturedStdout(), kReport);
}

}  // namespace
