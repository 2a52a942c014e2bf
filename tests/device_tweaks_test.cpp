#include "engine/device_tweaks.h"

#include <gtest/gtest.h>

#include "core/options.h"
#include "tests/apply_device.h"

namespace {

using Strings = std::vector<std::string>;

constexpr char kNoMenu[] = "[Error] Unable to locate Menu Animation";
constexpr char kNoWindow[] = "[Error] Unable to locate Window Animation";
constexpr char kNoGlyphs[] = "[Error] Unable to locate GlyphCache";
constexpr std::uint32_t kBothOff = OPT_NO_MENU_ANIMATION | OPT_NO_WINDOW_ANIMATION;

// A text of the registry with these data for both animations; empty data for no value.
std::string Animations(const std::string& window, const std::string& menu) {
    return "[HKEY_LOCAL_MACHINE\\System\\GWE]\n" +
           (window.empty() ? "" : "\"Animate\"=" + window + "\n") +
           "[HKEY_LOCAL_MACHINE\\System\\GWE\\Menu]\n" +
           (menu.empty() ? "" : "\"AniType\"=" + menu + "\n");
}

struct AnimationCase {
    const char* what;
    std::string before;
    std::uint32_t mask;
    Strings boxes;
    std::string after;
    bool restart;
};

const std::string kOn = Animations("dword:00000001", "dword:00000006");
const std::string kOff = Animations("dword:00000000", "dword:00000000");

const AnimationCase kAnimationCases[] = {
    {"on and wanted on", kOn, 0, {}, kOn, false},
    {"off and wanted off", kOff, kBothOff, {}, kOff, false},
    {"both switched off", kOn, kBothOff, {}, kOff, true},
    {"both switched on", kOff, 0, {}, kOn, true},
    {"menu switched off",
     kOn,
     OPT_NO_MENU_ANIMATION,
     {},
     Animations("dword:00000001", "dword:00000000"),
     true},
    {"window switched off",
     kOn,
     OPT_NO_WINDOW_ANIMATION,
     {},
     Animations("dword:00000000", "dword:00000006"),
     true},
    {"values of others", Animations("dword:00000002", "dword:00000003"), 0, {}, kOn, true},
    {"missing and wanted off",
     Animations("", ""),
     kBothOff,
     {kNoMenu, kNoWindow},
     Animations("", ""),
     false},
    {"missing and wanted on", Animations("", ""), 0, {kNoMenu, kNoWindow}, kOn, true},
    {"too large and wanted on",
     Animations("\"yes, please\"", "dword:00000006"),
     0,
     {kNoWindow},
     kOn,
     true},
    {"no keys and wanted off",
     "[HKEY_LOCAL_MACHINE\\System]\n",
     kBothOff,
     {kNoMenu, kNoMenu, kNoWindow, kNoWindow},
     "[HKEY_LOCAL_MACHINE\\System]\n",
     false},
    {"no keys and wanted on",
     "[HKEY_LOCAL_MACHINE\\System]\n",
     0,
     {kNoMenu, kNoMenu, kNoWindow, kNoWindow},
     "[HKEY_LOCAL_MACHINE\\System]\n",
     true},
};

TEST(DeviceTweaksTest, BringsAnimationsToWhatIsWanted) {
    for (const AnimationCase& test : kAnimationCases) {
        const ApplyResult result = ApplySilently({{}, test.before, test.mask});
        EXPECT_EQ(result.boxes, test.boxes) << test.what;
        EXPECT_EQ(result.registry, test.after) << test.what;
        EXPECT_EQ(result.restarts, 0) << test.what;
        ApplyInput allowed{{}, test.before, test.mask};
        allowed.allowRestart = true;
        EXPECT_EQ(ApplySilently(allowed).restarts, test.restart ? 1 : 0) << test.what;
    }
}

TEST(DeviceTweaksTest, SetsTheFontCache) {
    const std::string key = "[HKEY_LOCAL_MACHINE\\System\\GDI\\GLYPHCACHE]\n\"limit\"=dword:";
    const struct {
        std::int32_t position;
        const char* written;
    } cases[] = {
        {0, "00002000"}, {1, "00004000"}, {2, "00008000"}, {3, "00002000"}, {-1, "00002000"}};
    for (const auto& test : cases) {
        ApplyInput input{{},
                         kQuietTweaks + key + "00000005\n",
                         OPT_FONT_CACHE,
                         {},
                         {{OPT_FONT_CACHE, test.position}}};
        input.allowRestart = true;
        const ApplyResult result = ApplySilently(input);
        EXPECT_EQ(result.registry, kQuietTweaks + key + test.written + "\n");
        EXPECT_EQ(result.restarts, 0);
        input.mask = 0;
        EXPECT_EQ(ApplySilently(input).registry, input.registry);
    }
    EXPECT_EQ(ApplySilently({{}, kQuietTweaks, OPT_FONT_CACHE}).boxes, Strings{kNoGlyphs});
}

TEST(DeviceTweaksTest, KeepsTheStartupShortcutInLine) {
    const std::string made =
        "Windows/StartUp/Fennelbright.lnk=31#\"\\App\\Fennelbright.exe\" silent\"";
    const Strings directories = {"Windows/", "Windows/StartUp/"};
    const struct {
        const char* what;
        Strings before;
        std::uint32_t mask;
        Strings after;
    } cases[] = {
        {"made", {"Windows/StartUp/"}, OPT_SILENT_STARTUP, {made}},
        {"there already, whatever it holds",
         {"Windows/StartUp/fennelbright.LNK=other"},
         OPT_SILENT_STARTUP,
         {"Windows/StartUp/fennelbright.LNK=other"}},
        {"name taken by a directory",
         {"Windows/StartUp/Fennelbright.lnk/"},
         OPT_SILENT_STARTUP,
         {"Windows/StartUp/Fennelbright.lnk/"}},
        {"deleted", {"Windows/StartUp/Fennelbright.lnk=12345"}, 0, {}},
        {"others stay", {"Windows/StartUp/Other.lnk="}, 0, {"Windows/StartUp/Other.lnk="}},
    };
    for (const auto& test : cases) {
        const ApplyResult result = ApplySilently({test.before, kQuietTweaks, test.mask});
        Strings after = directories;
        after.insert(after.end(), test.after.begin(), test.after.end());
        EXPECT_EQ(result.files, after) << test.what;
        EXPECT_EQ(result.bytesCleaned, 0U) << test.what;
        EXPECT_EQ(result.boxes, Strings()) << test.what;
    }
    EXPECT_EQ(ApplySilently({{}, kQuietTweaks, OPT_SILENT_STARTUP}).files, Strings());
}

}  // namespace
