#include "platform/sample/sample_registry.h"

#include <fcntl.h>

#include <cerrno>

#include <string>
#include <string_view>

#include "platform/io/descriptor.h"
#include "platform/io/whole_file.h"

namespace platform {

namespace {

// As a handheld's registry editor exports it, but for the line ends.
constexpr std::string_view kRegistry = R"(REGEDIT4

[HKEY_CURRENT_USER\Software\AvantGo]
"DatabaseLocation"="\\My Documents\\AvantGo"
"SyncPages"=dword:00000001

[HKEY_CURRENT_USER\Software\Microsoft\Windows\CurrentVersion\Explorer\Shell Folders]
"Cache"="\\Windows\\Profiles\\guest\\Temporary Internet Files"
"History"="\\Windows\\Profiles\\guest\\History"

[HKEY_CURRENT_USER\Software\Microsoft\Windows\CurrentVersion\Internet Settings\5.0\Cache\Content]
"CacheLimit"=dword:00000800

[HKEY_CURRENT_USER\Software\Microsoft\Windows\CurrentVersion\Internet Settings\5.0\Cache\Cookies]
"CacheLimit"=dword:00000400

[HKEY_CURRENT_USER\Software\Microsoft\Windows\CurrentVersion\Internet Settings\5.0\Cache\History]
"CacheLimit"=dword:00000400

[HKEY_LOCAL_MACHINE\Explorer\Shell Folders]
"Favorites"="\\Windows\\Favorites"
"Fonts"="\\My Documents\\Fonts"
"My Documents"="\\My Documents\\Personal"

; The chess game and the atlas were deleted by hand; the others are still there.
[HKEY_LOCAL_MACHINE\Software\Apps\Harbour Chess]
"InstallDir"="\\Program Files\\Harbour Chess"
"Version"="1.2"

[HKEY_LOCAL_MACHINE\Software\Apps\Reader]
"InstallDir"="\\Program Files\\Reader"

[HKEY_LOCAL_MACHINE\Software\Apps\County Atlas]
"InstallDir"="\\Storage Card\\County Atlas"

[HKEY_LOCAL_MACHINE\Software\Apps\Fennelbright]
"InstallDir"="\\Program Files\\Fennelbright\\"

[HKEY_LOCAL_MACHINE\Software\Apps\Ringtones]
"CabFile"="\\Storage Card\\ringtones.cab"

[HKEY_LOCAL_MACHINE\System\GDI\GLYPHCACHE]
"limit"=dword:00002000

[HKEY_LOCAL_MACHINE\System\GWE]
"Animate"=dword:00000001

[HKEY_LOCAL_MACHINE\System\GWE\Menu]
"AniType"=dword:00000006
)";

std::string WithHandheldLineEnds(std::string_view text) {
    std::string lines;
    for (const char character : text) {
        if (character == '\n') {
            lines += '\r';
        }
        lines += character;
    }
    return lines;
}

}  // namespace

Status WriteSampleRegistry(int directory) {
    const Descriptor file(openat(directory, "registry.reg",
                                 O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666));
    Status written =
        file ? WriteWhole(file.get(), WithHandheldLineEnds(kRegistry)) : Fail("make it", errno);
    return written ? written : FailOf(written.error(), "registry.reg");
}

}  // namespace platform
