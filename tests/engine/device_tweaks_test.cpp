#include "engine/device_tweaks.h"

#include <tuple>

#include "core/option_table.h"
#include "tests/support/apply_device.h"

namespace {

using namespace std::string_literals;

const std::string kNoMenu = "[Error] Unable to locate Menu Animation";
const std::string kNoWindow = "[Error] Unable to locate Window Animation";
const Entries kNoValues = {kNoMenu, kNoWindow};
const Entries kNoKeys = {kNoMenu, kNoMenu, kNoWindow, kNoWindow};
constexpr std::uint32_t kNoMenus = OPT_NO_MENU_ANIMATION;
constexpr std::uint32_t kNoWindows = OPT_NO_WINDOW_ANIMATION;

// A text of the registry with these data for both animations; empty data for no value.
std::string Animations(const std::string& window, const std::string& menu) {
    return "[HKEY_LOCAL_MACHINE\\System\\GWE]\n" +
           (window.empty() ? "" : "\"Animate\"=" + window + "\n") +
           "[HKEY_LOCAL_MACHINE\\System\\GWE\\Menu]\n" +
           (menu.empty() ? "" : "\"AniType\"=" + menu + "\n");
}

const std::string kOn = Animations("dword:00000001", "dword:00000006");
const std::string kOff = Animations("dword:00000000", "dword:00000000");
const std::string kNoMenuOn = Animations("dword:00000001", "dword:00000000");
const std::string kNoWindowOn = Animations("dword:00000000", "dword:00000006");
const std::string kOthers = Animations("dword:00000002", "dword:00000003");
const std::string kLong = Animations("\"yes, please\"", "dword:00000006");
const std::string kEmpty = Animations("", "");
const std::string kNoKey = "[HKEY_LOCAL_MACHINE\\System]\n";

TEST(DeviceTweaksTest, BringsAnimationsToWhatIsWanted) {
    const std::tuple<std::string, std::uint32_t, Entries, std::string, int> cases[] = {
        {kOn, 0, {}, kOn, 0},
        {kOff, kNoMenus | kNoWindows, {}, kOff, 0},
        {kOn, kNoMenus | kNoWindows, {}, kOff, 1},
        {kOff, 0, {}, kOn, 1},
        {kOn, kNoMenus, {}, kNoMenuOn, 1},
        {kOn, kNoWindows, {}, kNoWindowOn, 1},
        {kOthers, 0, {}, kOn, 1},
        {kEmpty, kNoMenus | kNoWindows, kNoValues, kEmpty, 0},
        {kEmpty, 0, kNoValues, kOn, 1},
        {kLong, 0, {kNoWindow}, kOn, 1},
        {kNoKey, kNoMenus | kNoWindows, kNoKeys, kNoKey, 0},
        {kNoKey, 0, kNoKeys, kNoKey, 1},
    };
    for (const auto& [before, mask, boxes, after, restarts] : cases) {
        for (const bool allowed : {false, true}) {
            SCOPED_TRACE(before + std::to_string(mask));
            const ApplyResult result = ApplySilently({{}, before, mask, nullptr, 0, allowed});
            EXPECT_EQ(result.boxes, boxes);
            EXPECT_EQ(result.registry, after);
            EXPECT_EQ(result.restarts, allowed ? restarts : 0);
        }
    }
}

TEST(DeviceTweaksTest, SetsTheFontCache) {
    const std::string key =
        kQuietTweaks + "[HKEY_LOCAL_MACHINE\\System\\GDI\\GLYPHCACHE]\n\"limit\"=dword:"s;
    const std::pair<std::int32_t, const char*> cases[] = {{0, "00002000\n"},
                                                          {1, "00004000\n"},
                                                          {2, "00008000\n"},
                                                          {3, "00002000\n"},
                                                          {-1, "00002000\n"}};
    for (const auto& [position, written] : cases) {
        const ApplyResult result =
            ApplySilently({{}, key + "00000005\n", OPT_FONT_CACHE, nullptr, position, true});
        EXPECT_EQ(result.registry, key + written);
        EXPECT_EQ(result.restarts, 0);
    }
    EXPECT_EQ(ApplySilently({{}, key + "00000005\n"}).registry, key + "00000005\n");
    EXPECT_EQ(ApplySilently({{}, kQuietTweaks, OPT_FONT_CACHE}).boxes,
              Entries{"[Error] Unable to locate GlyphCache"});
}

TEST(DeviceTweaksTest, MakesAndDeletesTheStartupShortcutAsTicked) {
    const std::string made = "Fennelbright.lnk=31#\"\\App\\Fennelbright.exe\" silent\"";
    const std::tuple<std::string, std::uint32_t, std::string> cases[] = {
        {"", OPT_SILENT_STARTUP, made},
        {"fennelbright.LNK=other", OPT_SILENT_STARTUP, "fennelbright.LNK=other"},
        {"Fennelbright.lnk/", OPT_SILENT_STARTUP, "Fennelbright.lnk/"},
        {"Fennelbright.lnk=12345", 0, ""},
        {"Other.lnk=", 0, "Other.lnk="},
    };
    const std::string directory = "Windows/StartUp/";
    for (const auto& [before, mask, left] : cases) {
        const ApplyResult result = ApplySilently({{directory + before}, kQuietTweaks, mask});
        Entries after = {"Windows/", directory};
        if (!left.empty()) {
            after.push_back(directory + left);
        }
        EXPECT_EQ(result.files, after);
        EXPECT_EQ(result.bytesCleaned, 0U);
        EXPECT_EQ(result.boxes, Entries());
    }
    EXPECT_EQ(ApplySilently({{}, kQuietTweaks, OPT_SILENT_STARTUP}).files, Entries());
}

}  // namespace
