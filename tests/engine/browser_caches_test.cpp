#include "engine/browser_caches.h"

#include "core/option_table.h"
#include "tests/support/apply_device.h"

namespace {

constexpr std::uint32_t kClear = OPT_CLEAR_IE_CACHE;
constexpr std::uint32_t kForget = OPT_CLEAR_IE_HISTORY;
constexpr std::uint32_t kMove = OPT_MOVE_IE_CACHE;
const std::string kNoDirectory = "[Error] Unable to locate Internet Explorer cache directory";

const std::string kBrowserKey =
    "[HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\";
const std::string kFolders = kBrowserKey + "Explorer\\Shell Folders]\n";
const std::string kOther = kFolders + "\"Other\"=\"\\\\C\"\n";
const std::string kBoth = kFolders + "\"Cache\"=\"\\\\C\"\n\"History\"=\"\\\\H\\\\\"\n";
const std::string kMoved = kFolders + "\"Cache\"=\"\\\\N\\\\\"\n\"History\"=\"\\\\H\\\\\"\n";

const Entries kCache = Words("C/a=12345 C/D/b=123 H/day/c=12 N/");
const Entries kUntouched = Words("C/ C/D/ C/D/b=123 C/a=12345 H/ H/day/ H/day/c=12 N/");
const Entries kEmptied = Words("C/ C/D/ H/ H/day/ H/day/c=12 N/");
const Entries kCleared = Words("C/ H/ H/day/ H/day/c=12 N/");
const Entries kForgotten = Words("C/ C/D/ C/D/b=123 C/a=12345 H/ H/day/ N/");

TEST(BrowserCachesTest, ClearsAndMovesDirectories) {
    const struct {
        std::string before;
        std::uint32_t mask;
        const WCHAR* text;
        std::size_t boxes;
        Entries left;
        std::string after;
        std::uint32_t bytes;
    } cases[] = {{kBoth, kClear, nullptr, 0, kCleared, kBoth, 8},
                 {kBoth, kForget, nullptr, 0, kForgotten, kBoth, 2},
                 {kBoth, kMove, u"\\N\\", 0, kEmptied, kMoved, 8},
                 {kBoth, kClear | kMove, u"\\N\\", 0, kCleared, kMoved, 8},
                 {kBoth, kMove, u"", 0, kUntouched, kBoth, 0},
                 {"", kClear | kForget | kMove, u"\\N\\", 6, kUntouched, "", 0},
                 {kOther, kClear | kMove, u"\\N\\", 2, kUntouched, kOther, 0}};
    for (const auto& test : cases) {
        SCOPED_TRACE(test.before + std::to_string(test.mask));
        const ApplyResult result =
            ApplySilently({kCache, kQuietTweaks + test.before, test.mask, test.text});
        EXPECT_EQ(result.boxes, Entries(test.boxes, kNoDirectory));
        EXPECT_EQ(result.files, test.left);
        EXPECT_EQ(result.registry, kQuietTweaks + test.after);
        EXPECT_EQ(result.bytesCleaned, test.bytes);
        EXPECT_EQ(result.notes, "");
    }
}

// A registry whose browser cache has these data.
std::string WithCache(const std::string& data) {
    return kQuietTweaks + kFolders + "\"Cache\"=" + data + "\n";
}

const std::string kHeader = "Windows Registry Editor Version 5.00\n";

// Everything below the root would go if one of these were taken for a directory.
TEST(BrowserCachesTest, PassesOverWhatIsNoPath) {
    for (const std::string data :
         {"\"\"", "\"\\\\\"", "\"\\\\\\\\\\\\\"", "\"C\"", "\"C\\\\D\"", "hex(1):5c,00,43",
          "hex(1):5c", "hex:5c,00", "hex(1):00,00,5c,00,43,00", "dword:00000000",
          "hex:", "hex(1):5c,00,00,00,43,00"}) {
        SCOPED_TRACE(data);
        const ApplyResult result =
            ApplySilently({kCache, kHeader + WithCache(data), kClear | kMove, u"\\N\\"});
        EXPECT_EQ(result.boxes, Entries());
        EXPECT_EQ(result.files, kUntouched);
        EXPECT_TRUE(result.registry.ends_with(WithCache("\"\\\\N\\\\\""))) << result.registry;
        EXPECT_NE(result.notes.find("fennelbright: Cache is skipped"), std::string::npos);
    }
}

TEST(BrowserCachesTest, EndsAPathWhereItsValueEnds) {
    // The history is read into the same buffer before and is longer.
    const std::string history = "\"History\"=\"\\\\No such directory\"\n";
    for (const std::string data :
         {"hex(1):5c,00,43,00", "hex(1):5c,00,43,00,00,00,58,00", "hex:5c,00,43,00,00,00",
          "dword:0043005c", "hex(2):5c,00,43,00,00,00"}) {
        const std::string registry = (kHeader + WithCache(data)).append(history);
        EXPECT_EQ(ApplySilently({kCache, registry, kForget | kMove, u"\\N\\"}).files, kEmptied)
            << data;
    }
}

TEST(BrowserCachesTest, CutsNoLongPath) {
    for (const int length : {1021, 1022, 1023, 1024, 1500}) {
        std::string value;
        for (int at = 0; at < length; ++at) {
            value += at % 200 == 0 ? "\\\\" : "n";
        }
        const ApplyResult result = ApplySilently({kCache, WithCache('"' + value + '"'), kClear});
        EXPECT_EQ(result.files, kUntouched);
        EXPECT_EQ(result.boxes.size(), length >= 1024 ? 1U : 0U) << length;
        EXPECT_EQ(result.notes.empty(), length != 1022 && length != 1023) << length;
    }
}

// The keys with their limits, of which one has been changed.
std::string Limits(const std::string& changed, const std::string& value) {
    std::string registry = kQuietTweaks;
    for (const std::string key : {"Content", "Cookies", "History"}) {
        registry.append(kBrowserKey).append("Internet Settings\\5.0\\Cache\\").append(key);
        registry.append("]\n\"CacheLimit\"=dword:").append(key == changed ? value : "00000007");
        registry += '\n';
    }
    return registry;
}

TEST(BrowserCachesTest, WritesTheChosenLimit) {
    const struct {
        std::uint32_t option;
        const char* key;
        const char* name;
        const char* written[3];  // by position
    } cases[] = {{OPT_LIMIT_IE_CACHE, "Content", "cache", {"00000400", "00000800", "00000c00"}},
                 {OPT_LIMIT_IE_HISTORY, "History", "history", {"00000100", "00000200", "00000400"}},
                 {OPT_LIMIT_IE_COOKIES, "Cookies", "cookie", {"00000100", "00000200", "00000400"}}};
    for (const auto& test : cases) {
        for (const std::int32_t position : {0, 1, 2, 3, -1, 2147483647}) {
            const char* const written = test.written[position < 0 || position > 2 ? 1 : position];
            const ApplyResult result =
                ApplySilently({{}, Limits("", ""), test.option, nullptr, position});
            EXPECT_EQ(result.registry, Limits(test.key, written)) << test.key << position;
            EXPECT_EQ(result.boxes, Entries());
        }
        const ApplyResult missing = ApplySilently({{}, kQuietTweaks, test.option});
        EXPECT_EQ(missing.boxes,
                  Entries{std::string("[Error] Unable to locate Internet Explorer ") + test.name +
                          " limit"});
        EXPECT_EQ(missing.registry, kQuietTweaks);
    }
}

}  // namespace
