#include "platform/text/name_translation.h"
#include "platform/text/name_matching.h"

#include <gtest/gtest.h>

#include <string>

namespace platform {
namespace {

void ExpectPair(const std::string& host, const std::u16string& device) {
    EXPECT_EQ(DeviceNameOf(host).view(), device) << host;
    HostName back;
    EXPECT_TRUE(HostNameOf(device, back)) << host;
    EXPECT_EQ(back.view(), host);
}

TEST(NameTranslation, EveryHostNameHasOneDeviceNameThatLeadsBack) {
    const std::pair<std::string, std::u16string> cases[] = {
        {"caf\xC3\xA9 ", u"caf\u00E9 "},
        {"\xF0\x9F\x98\x80", u"\U0001F600"},
        {"caf\xE9", u"caf\uF0E9"},                       // a byte that is no UTF-8
        {"a\\b:c*d?", u"a\uF05Cb\uF03Ac\uF02Ad\uF03F"},  // not allowed on the handheld
        {"\x01\x1F\x7F", u"\uF001\uF01F\x7F"},           // controls
        {"\xEF\x80\xAA", u"\uF0EF\uF080\uF0AA"},         // U+F02A itself
        {"\xEF\x84\x80", u"\uF100"},                     // just after the escapes
        {"\xED\xA0\x80", u"\uF0ED\uF0A0\uF080"},         // half of a surrogate pair
        {"\xC3", u"\uF0C3"},                             // cut in a character
        {std::string(255, '\xFF'), std::u16string(255, u'\uF0FF')},
        {"...", u"..."},
    };
    for (const auto& [host, device] : cases) {
        ExpectPair(host, device);
    }
}

TEST(NameTranslation, NamesAsLongAsTheHandheldHasThemAreItsOwn) {
    std::string host;
    for (int count = 0; count < 255; ++count) {
        host += "\xE6\x96\x87";  // three bytes each, on a card whose file system allows that
    }
    ExpectPair(host, std::u16string(255, u'\u6587'));
    EXPECT_TRUE(DeviceNameOf(host + "x").view().empty());
}

TEST(NameTranslation, NamesThatNoHostEntryCanHaveNameNothing) {
    // The last four are escapes: of a byte that needs none, of two that would make one character,
    // and of bytes that no name holds.
    for (const std::u16string name :
         {u"", u".", u"..", u"a/b", u"a:b", u"a*", u"\xD800", u".fennelbright-new-0123456789abcdef",
          u"\uF041", u"\uF0C3\uF0A9", u"\uF02F", u"\uF000"}) {
        HostName host;
        EXPECT_FALSE(HostNameOf(name, host)) << host.view();
    }
    HostName host;
    EXPECT_FALSE(HostNameOf(std::u16string(u"a\0b", 3), host));
    EXPECT_FALSE(HostNameOf(std::u16string(256, u'a'), host));
}

TEST(NameTranslation, CaseDoesNotTellNamesApart) {
    const std::u16string same[][2] = {
        {u"README.TXT", u"readme.txt"}, {u"\u00C4rger", u"\u00E4RGER"}, {u"\u0416", u"\u0436"}};
    for (const auto& [left, right] : same) {
        EXPECT_TRUE(SameName(left, right));
        EXPECT_EQ(NameHash(left), NameHash(right));
    }
    const std::u16string different[][2] = {
        {u"a", u"ab"},     {u"\u0131", u"i"},       {u"\u0130", u"i"}, {u"\u212A", u"k"},
        {u"\u017F", u"s"}, {u"\u00E9", u"e\u0301"}, {u"[", u"{"}};
    for (const auto& [left, right] : different) {
        EXPECT_FALSE(SameName(left, right));
    }
}

}  // namespace
}  // namespace platform
