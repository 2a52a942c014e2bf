#include "engine/browser_caches.h"

#include <gtest/gtest.h>

#include "core/options.h"
#include "tests/apply_device.h"

namespace {

using Strings = std::vector<std::string>;
using Texts = std::vector<std::pair<std::uint32_t, const WCHAR*>>;

constexpr char kNoDirectory[] = "[Error] Unable to locate Internet Explorer cache directory";

const std::string kFolders =
    "[HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders]\n";

std::string LimitKey(const std::string& name) {
    return "[HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Internet "
           "Settings\\5.0\\Cache\\" +
           name + "]\n";
}

struct DirectoryCase {
    const char* what;
    std::string registry;
    std::uint32_t mask;
    Texts texts;
    Strings boxes;
    Strings left;
    std::string registryAfter;
    std::uint32_t bytes;
};

const Strings kCache = {"C/a=12345", "C/D/b=123", "H/day/c=12", "N/"};
const Strings kUntouched = {"C/", "C/D/",   "C/D/b=123",  "C/a=12345",
                            "H/", "H/day/", "H/day/c=12", "N/"};
const Strings kEmptied = {"C/", "C/D/", "H/", "H/day/", "H/day/c=12", "N/"};
const std::string kBoth = kFolders + "\"Cache\"=\"\\\\C\"\n\"History\"=\"\\\\H\\\\\"\n";
const std::string kMoved = kFolders + "\"Cache\"=\"\\\\N\\\\\"\n\"History\"=\"\\\\H\\\\\"\n";

const DirectoryCase kDirectoryCases[] = {
    {"cache cleared",
     kBoth,
     OPT_CLEAR_IE_CACHE,
     {},
     {},
     {"C/", "H/", "H/day/", "H/day/c=12", "N/"},
     kBoth,
     8},
    {"history cleared",
     kBoth,
     OPT_CLEAR_IE_HISTORY,
     {},
     {},
     {"C/", "C/D/", "C/D/b=123", "C/a=12345", "H/", "H/day/", "N/"},
     kBoth,
     2},
    {"cache moved",
     kBoth,
     OPT_MOVE_IE_CACHE,
     {{OPT_MOVE_IE_CACHE, u"\\N\\"}},
     {},
     kEmptied,
     kMoved,
     8},
    {"cleared and moved",
     kBoth,
     OPT_CLEAR_IE_CACHE | OPT_MOVE_IE_CACHE,
     {{OPT_MOVE_IE_CACHE, u"\\N\\"}},
     {},
     {"C/", "H/", "H/day/", "H/day/c=12", "N/"},
     kMoved,
     8},
    {"moved to nowhere",
     kBoth,
     OPT_MOVE_IE_CACHE,
     {{OPT_MOVE_IE_CACHE, u""}},
     {},
     kUntouched,
     kBoth,
     0},
    {"no key",
     "",
     OPT_CLEAR_IE_CACHE | OPT_CLEAR_IE_HISTORY | OPT_MOVE_IE_CACHE,
     {{OPT_MOVE_IE_CACHE, u"\\N\\"}},
     {kNoDirectory, kNoDirectory, kNoDirectory, kNoDirectory, kNoDirectory, kNoDirectory},
     kUntouched,
     "",
     0},
    {"no value",
     kFolders + "\"Other\"=\"\\\\C\"\n",
     OPT_CLEAR_IE_CACHE | OPT_MOVE_IE_CACHE,
     {{OPT_MOVE_IE_CACHE, u"\\N\\"}},
     {kNoDirectory, kNoDirectory},
     kUntouched,
     kFolders + "\"Other\"=\"\\\\C\"\n",
     0},
};

TEST(BrowserCachesTest, ClearsAndMovesDirectories) {
    for (const DirectoryCase& test : kDirectoryCases) {
        const ApplyResult result =
            ApplySilently({kCache, kQuietTweaks + test.registry, test.mask, test.texts});
        EXPECT_EQ(result.boxes, test.boxes) << test.what;
        EXPECT_EQ(result.files, test.left) << test.what;
        EXPECT_EQ(result.registry, kQuietTweaks + test.registryAfter) << test.what;
        EXPECT_EQ(result.bytesCleaned, test.bytes) << test.what;
        EXPECT_EQ(result.notes, "") << test.what;
    }
}

// A registry whose browser cache has these data.
std::string WithCache(const std::string& data) {
    std::string registry = kQuietTweaks;
    registry.append(kFolders).append("\"Cache\"=").append(data).append("\n");
    return registry;
}

constexpr char kHeader[] = "Windows Registry Editor Version 5.00\n";

// Everything below the root would go if one of these were taken for a directory.
TEST(BrowserCachesTest, PassesOverWhatIsNoPath) {
    for (const std::string data :
         {"\"\"", "\"\\\\\"", "\"\\\\\\\\\\\\\"", "\"C\"", "\"C\\\\D\"", "hex(1):5c,00,43",
          "hex(1):5c", "hex:5c,00", "hex(1):00,00,5c,00,43,00", "dword:00000000",
          "hex:", "hex(1):5c,00,00,00,43,00"}) {
        const std::string registry = WithCache(data);
        const ApplyResult result = ApplySilently({kCache,
                                                  kHeader + registry,
                                                  OPT_CLEAR_IE_CACHE | OPT_MOVE_IE_CACHE,
                                                  {{OPT_MOVE_IE_CACHE, u"\\N\\"}}});
        EXPECT_EQ(result.boxes, Strings()) << data;
        EXPECT_EQ(result.files, kUntouched) << data;
        EXPECT_TRUE(result.registry.ends_with(registry)) << data << result.registry;
        EXPECT_NE(result.notes.find("fennelbright: Cache is passed over"), std::string::npos)
            << data << result.notes;
    }
}

TEST(BrowserCachesTest, EndsAPathWhereItsValueEnds) {
    for (const std::string data :
         {"hex(1):5c,00,43,00", "hex(1):5c,00,43,00,00,00,58,00", "hex:5c,00,43,00,00,00",
          "dword:0043005c", "hex(2):5c,00,43,00,00,00"}) {
        // The history is read into the same buffer before and is longer.
        const ApplyResult result =
            ApplySilently({kCache,
                           kHeader + WithCache(data) + "\"History\"=\"\\\\No such directory\"\n",
                           OPT_CLEAR_IE_HISTORY | OPT_MOVE_IE_CACHE,
                           {{OPT_MOVE_IE_CACHE, u"\\N\\"}}});
        EXPECT_EQ(result.files, kEmptied) << data;
    }
}

TEST(BrowserCachesTest, CutsNoLongPath) {
    for (const int length : {1021, 1022, 1023, 1024, 1500}) {
        std::string value;
        for (int at = 0; at < length; ++at) {
            value += at % 200 == 0 ? "\\\\" : "n";
        }
        const ApplyResult result =
            ApplySilently({kCache, WithCache('"' + value + '"'), OPT_CLEAR_IE_CACHE});
        EXPECT_EQ(result.files, kUntouched);
        EXPECT_EQ(result.boxes.size(), length >= 1024 ? 1U : 0U) << length;
        EXPECT_EQ(result.notes.empty(), length != 1023) << length;
    }
}

struct LimitCase {
    std::uint32_t option;
    const char* key;
    std::int32_t position;
    const char* written;
};

constexpr LimitCase kLimitCases[] = {
    {OPT_LIMIT_IE_CACHE, "Content", 0, "00000400"},
    {OPT_LIMIT_IE_CACHE, "Content", 1, "00000800"},
    {OPT_LIMIT_IE_CACHE, "Content", 2, "00000c00"},
    {OPT_LIMIT_IE_CACHE, "Content", -1, "00000800"},
    {OPT_LIMIT_IE_HISTORY, "History", 0, "00000100"},
    {OPT_LIMIT_IE_HISTORY, "History", 1, "00000200"},
    {OPT_LIMIT_IE_HISTORY, "History", 2, "00000400"},
    {OPT_LIMIT_IE_HISTORY, "History", 3, "00000200"},
    {OPT_LIMIT_IE_COOKIES, "Cookies", 0, "00000100"},
    {OPT_LIMIT_IE_COOKIES, "Cookies", 1, "00000200"},
    {OPT_LIMIT_IE_COOKIES, "Cookies", 2, "00000400"},
    {OPT_LIMIT_IE_COOKIES, "Cookies", 2147483647, "00000200"},
};

std::string Limits(const std::string& changed, const std::string& value) {
    std::string registry;
    for (const std::string key : {"Content", "Cookies", "History"}) {
        registry +=
            LimitKey(key) + "\"CacheLimit\"=dword:" + (key == changed ? value : "00000007") + "\n";
    }
    return kQuietTweaks + registry;
}

TEST(BrowserCachesTest, WritesTheChosenLimit) {
    for (const LimitCase& test : kLimitCases) {
        const ApplyResult result =
            ApplySilently({{}, Limits("", ""), test.option, {}, {{test.option, test.position}}});
        EXPECT_EQ(result.registry, Limits(test.key, test.written)) << test.key << test.position;
        EXPECT_EQ(result.boxes, Strings());
    }
}

TEST(BrowserCachesTest, TellsOfMissingLimitKeys) {
    const ApplyResult result = ApplySilently(
        {{}, kQuietTweaks, OPT_LIMIT_IE_CACHE | OPT_LIMIT_IE_HISTORY | OPT_LIMIT_IE_COOKIES});
    EXPECT_EQ(result.boxes, (Strings{"[Error] Unable to locate Internet Explorer cache limit",
                                     "[Error] Unable to locate Internet Explorer history limit",
                                     "[Error] Unable to locate Internet Explorer cookie limit"}));
    EXPECT_EQ(result.registry, kQuietTweaks);
}

}  // namespace
