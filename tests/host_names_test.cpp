#include "platform/host_names.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace platform {
namespace {

TEST(HostNames, EveryHostNameHasOneDeviceNameThatLeadsBack) {
    const struct {
        std::string host;
        std::u16string device;
    } cases[] = {
        {"setup.exe", u"setup.exe"},
        {"caf\xC3\xA9", u"caf\u00E9"},
        {"\xF0\x9F\x98\x80", u"\U0001F600"},
        {"caf\xE9", u"caf\uF0E9"},                       // a byte that is no UTF-8
        {"a\\b:c*d?", u"a\uF05Cb\uF03Ac\uF02Ad\uF03F"},  // not allowed on the handheld
        {"\x01\x1F\x7F", u"\uF001\uF01F\x7F"},           // controls
        {"\xEF\x80\xAA", u"\uF0EF\uF080\uF0AA"},         // U+F02A itself
        {"\xEF\x84\x80", u"\uF100"},                     // just behind the escapes
        {"\xED\xA0\x80", u"\uF0ED\uF0A0\uF080"},         // half of a surrogate pair
        {"\xC3", u"\uF0C3"},                             // cut in a character
        {std::string(255, '\xFF'), std::u16string(255, u'\uF0FF')},
        {"...", u"..."},
        {" .lnk ", u" .lnk "},
    };
    for (const auto& expected : cases) {
        EXPECT_EQ(DeviceNameOf(expected.host).view(), expected.device) << expected.host;
        HostName host;
        EXPECT_TRUE(HostNameOf(expected.device, host)) << expected.host;
        EXPECT_EQ(host.view(), expected.host);
    }
}

TEST(HostNames, NamesAsLongAsTheHandheldHasThemAreItsOwn) {
    std::string host;
    for (int count = 0; count < 255; ++count) {
        host += "\xE6\x96\x87";  // three bytes each, on a card whose file system allows that
    }
    HostName back;
    EXPECT_EQ(DeviceNameOf(host).view().size(), 255U);
    EXPECT_TRUE(HostNameOf(DeviceNameOf(host).view(), back));
    EXPECT_EQ(back.view(), host);
    EXPECT_TRUE(DeviceNameOf(host + "x").view().empty());
}

TEST(HostNames, RandomBytesKeepTheirNamesApart) {
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    for (int round = 0; round < 20000; ++round) {
        std::string bytes(1 + random() % 12, ' ');
        for (char& byte : bytes) {
            do {
                byte = static_cast<char>(random() % 4 == 0 ? 0xEF : random() % 256);
            } while (byte == '\0' || byte == '/');
        }
        if (bytes == "." || bytes == "..") {
            continue;
        }
        HostName host;
        ASSERT_TRUE(HostNameOf(DeviceNameOf(bytes).view(), host));
        ASSERT_EQ(host.view(), bytes);
    }
}

TEST(HostNames, NamesThatNoHostEntryCanHaveNameNothing) {
    const std::u16string names[] = {
        u"",
        u".",
        u"..",
        u"a/b",
        u"a:b",
        u"a*",
        std::u16string(u"a\0b", 3),
        u"\uF041",        // an escape of a byte that needs none
        u"\uF0C3\uF0A9",  // escapes that would make one character
        u"\uF02F",
        u"\uF000",  // escapes of bytes that no name holds
        std::u16string(1, char16_t{0xD800}),
        std::u16string(256, u'a'),
        u".fennelbright-new-0123456789abcdef",
    };
    for (const std::u16string& name : names) {
        HostName host;
        EXPECT_FALSE(HostNameOf(name, host)) << host.view();
    }
}

TEST(HostNames, CaseDoesNotTellNamesApart) {
    const struct {
        std::u16string left;
        std::u16string right;
        bool same;
    } cases[] = {
        {u"README.TXT", u"readme.txt", true},
        {u"\u00C4rger", u"\u00E4RGER", true},
        {u"\u0416", u"\u0436", true},
        {u"a", u"ab", false},
        {u"\u0131", u"i", false},
        {u"\u0130", u"i", false},
        {u"\u212A", u"k", false},
        {u"\u017F", u"s", false},
        {u"\u00E9", u"e\u0301", false},
        {u"[", u"{", false},
    };
    for (const auto& expected : cases) {
        EXPECT_EQ(SameName(expected.left, expected.right), expected.same);
        if (expected.same) {
            EXPECT_EQ(NameHash(expected.left), NameHash(expected.right));
        }
    }
}

TEST(HostNames, PatternsMatchWithoutCase) {
    const struct {
        std::u16string pattern;
        std::u16string name;
        bool matches;
    } cases[] = {
        {u"*", u"noext", true},       {u"*.*", u"noext", true},       {u"*.lnk", u"b.LNK", true},
        {u"*.lnk", u"d.lnkx", false}, {u"*.lnk", u"x.y.lnk", true},   {u"*.lnk", u".lnk", true},
        {u"a?c", u"abc", true},       {u"a?c", u"ac", false},         {u"Foo*", u"foo", true},
        {u"*a*b", u"xaxab", true},    {u"*a*b", u"xaxa", false},      {u"a**", u"a", true},
        {u"?", u"", false},           {u"*.tm?", u"a.tmp.tmp", true},
    };
    for (const auto& expected : cases) {
        EXPECT_EQ(MatchesPattern(expected.pattern, expected.name), expected.matches);
    }
}

}  // namespace
}  // namespace platform
