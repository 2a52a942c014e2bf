#include "platform/registry/text/edited_registry_text.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

#include "core/registry_operations.h"

namespace platform {
namespace {

using namespace std::string_literals;
using namespace std::string_view_literals;

constexpr std::u16string_view kApps = u"HKEY_LOCAL_MACHINE\\Software\\Apps";
const std::string kAppsLine = "[HKEY_LOCAL_MACHINE\\Software\\Apps]\n";

std::string Utf16(std::u16string_view text) {
    std::string bytes = "\xFF\xFE";
    EncodeText(TextEncoding::kUtf16, text, bytes);
    return bytes;
}

std::vector<std::uint8_t> Bytes(std::string_view bytes) {
    return {bytes.begin(), bytes.end()};
}

// The bytes of a text with its terminator.
std::vector<std::uint8_t> TextBytes(const std::u16string& text) {
    std::string bytes;
    EncodeText(TextEncoding::kUtf16, text + u'\0', bytes);
    return Bytes(bytes);
}

// Parsed, or an empty registry and a failed test.
EditedRegistryText MustParse(std::string bytes) {
    Result<EditedRegistryText> text = EditedRegistryText::Parse(std::move(bytes));
    EXPECT_TRUE(text) << Describe(text.error());
    return text ? std::move(*text) : EditedRegistryText::Parse("").value();
}

std::optional<RegistryData> Read(const EditedRegistryText& text, std::u16string_view path,
                                 std::u16string_view name) {
    const KeyIndex key = text.FindKey(path);
    return key == 0 ? std::nullopt : text.Value(key, name);
}

std::string Replaced(std::string text, std::string_view from, std::string_view to) {
    const std::size_t at = text.find(from);
    EXPECT_NE(at, std::string::npos) << from;
    return at == std::string::npos ? text : text.replace(at, from.size(), to);
}

TEST(EditedRegistryText, ReadsEveryFormOfData) {
    const std::tuple<const char*, std::uint32_t, std::vector<std::uint8_t>> cases[] = {
        {R"("text")", REG_SZ, TextBytes(u"text")},
        {"- \n  \"V\" = \"text\" ; a comment", REG_SZ, TextBytes(u"text")},
        {R"("\\Temp\\ \"x\"")", REG_SZ, TextBytes(u"\\Temp\\ \"x\"")},
        {R"("\Temp\new")", REG_SZ, TextBytes(u"\\Temp\\new")},
        {"\"one\r\n[two]\"", REG_SZ, TextBytes(u"one\r\n[two]")},
        {"\"a\";\"", REG_SZ, TextBytes(u"a")},
        {"\"gr\xC3\xBC\xC3\x9F \xF0\x9F\x99\x82\"", REG_SZ, TextBytes(u"grüß 🙂")},
        {"dword:0000000a", REG_DWORD, {10, 0, 0, 0}},
        {"dword:FACE", REG_DWORD, {0xCE, 0xFA, 0, 0}},
        {"DWORD: 7", REG_DWORD, {7, 0, 0, 0}},
        {"hex:", REG_BINARY, {}},
        {"hex:00,\\ ; here\r\n; a comment\r\n\r\n  01,\r\n  02", REG_BINARY, {0, 1, 2}},
        {"hex:\\\n  00,01", REG_BINARY, {0, 1}},
        {"hex(0):01", REG_NONE, {1}},
        {"hex(1):41,00,42", REG_SZ, {0x41, 0, 0x42}},
        {"hex(b):01,02,03,04,05,06,07,08", REG_QWORD, {1, 2, 3, 4, 5, 6, 7, 8}},
        {"hex(ffffffff):01", 0xFFFFFFFF, {1}},
        {R"(multi_sz:"a","")", REG_MULTI_SZ, Bytes("a\0\0\0\0\0\0\0"sv)},
        {"multi_sz:\"a\", ; c\n;c\n  \"b\"", REG_MULTI_SZ, Bytes("a\0\0\0b\0\0\0\0\0"sv)},
        {"multi_sz:", REG_MULTI_SZ, {0, 0}},
        {R"(mui_sz:"x.dll,#1")", REG_MUI_SZ, TextBytes(u"x.dll,#1")},
        {"dword:1\n\"V\"=dword:2", REG_DWORD, {2, 0, 0, 0}},
    };
    for (const auto& [data, type, bytes] : cases) {
        SCOPED_TRACE(data);
        for (const char* const header : {"", "Windows Registry Editor Version 5.00\r\n\r\n"}) {
            const EditedRegistryText text =
                MustParse(header + kAppsLine + "\"v\"=" + data + "\r\n");
            const std::optional<RegistryData> value = Read(text, kApps, u"v");
            ASSERT_TRUE(value);
            EXPECT_EQ(value->type, type);
            EXPECT_EQ(value->bytes, bytes);
        }
    }
}

TEST(EditedRegistryText, LeavesOutValuesWithoutData) {
    for (const char* const data :
         {"-", "dword:LOC_X", "LOC_9_A", "$(_Name9) ; c", "\"a\"\n\"v\"=-", "multi_sz:LOC_B,\"a\"",
          "dword:1\n\"v\"=dword:LOC_X", "hex:1,$(N)", "mui_sz:LOC_X"}) {
        const std::string bytes = kAppsLine + "\"v\"=" + data + "\n\"w\"=\"x\"\n";
        const EditedRegistryText text = MustParse(bytes);
        EXPECT_FALSE(Read(text, kApps, u"v")) << data;
        EXPECT_TRUE(Read(text, kApps, u"w")) << data;
        EXPECT_EQ(text.Serialize(), bytes);
    }
}

TEST(EditedRegistryText, NamesTheLineOfAFault) {
    const std::pair<std::size_t, std::vector<const char*>> cases[] = {
        {1,
         {"nonsense", "[HKEY_USERS\n", "[]\n", "\"a\"=\"b\"\n", "\xFF\xFE[", "\xFE\xFF",
          "Windows Registry Editor Version 6.00\n", "\xEF\xBB\xBF; \xE9\n"}},
        {2,
         {"[HKEY_USERS]\r\n\"a\"=\"b\r\n", "[HKEY_USERS]\r\"a\"=\r", "\n[-\\]\n",
          "[-HKEY_USERS\\a]\n\"a\"=\"b\"\n"}},
        {3, {"[HKEY_USERS]\n\"a\"=\"b\"\nIF X\n"}},
        {4, {"[HKEY_USERS]\n\"a\"=hex:00,\\\n  01,\\\n  xyz!\n"}}};
    const auto expectFault = [](const std::string& text, std::size_t line, bool goesOn = false) {
        const Result<EditedRegistryText> parsed = EditedRegistryText::Parse(text);
        ASSERT_FALSE(parsed) << text;
        EXPECT_EQ(parsed.error().object, "line " + std::to_string(line)) << text;
        EXPECT_EQ(ReasonOf(parsed.error()) == "a list that goes on at the end of the file", goesOn);
    };
    for (const auto& [line, texts] : cases) {
        for (const char* const text : texts) {
            expectFault(text, line);
        }
    }
    for (const char* const value :
         {" \"b\"", "=\"b\" c", "=dword:", "=dword:1x", "=dword:123456789", "=hex():00",
          "=hex(1ffffffff):00", "=multi_sz:\"x\",,", "=mui_sz:\n\"b\"=\"c\"", "=foo", "=dword:zz",
          "=hex:1,zz", "=multi_sz:zz", "=loc_x", "=LOC_", "=LOC_Name", "=$NAME", "=$()"}) {
        expectFault("[HKEY_USERS]\n\"a\""s + value + "\n", 2);
    }
    for (const char* const list : {"hex:0,\\\n 1,\\", "hex:0,\n1, ;c\n\n;c\n", "hex:\\ ;\n0,\n ",
                                   "multi_sz:\"a\",\n\"b\",\\\n"}) {
        expectFault("[HKEY_USERS]\n\"a\"="s + list, 3, true);
    }
}

TEST(EditedRegistryText, BoundsTheNamesAndLevelsOfKeys) {
    const std::string name(255, 'k');
    std::string levels = "HKEY_USERS";
    for (int level = 1; level < 512; ++level) {
        levels += "\\k";
    }
    EXPECT_TRUE(EditedRegistryText::Parse("[HKEY_USERS\\" + name + "]\n[" + levels + "]\n"));
    EXPECT_FALSE(EditedRegistryText::Parse("[HKEY_USERS\\" + name + "k]\n"));
    EXPECT_FALSE(EditedRegistryText::Parse("[" + levels + "\\k]\n"));
}

TEST(EditedRegistryText, NarrowTextsAreCharacters) {
    const EditedRegistryText ansi =
        MustParse("REGEDIT4\n\n" + kAppsLine +
                  "\"a\"=hex(1):5c,54,00\n\"b\"=hex(7):80,00,00\n\"c\"=\"\x80\"\n"
                  "\"d\"=hex(2):c3,a9\n\"e\"=hex(3):80\n");
    EXPECT_EQ(Read(ansi, kApps, u"a")->bytes, TextBytes(u"\\T"));
    EXPECT_EQ(Read(ansi, kApps, u"b")->bytes, Bytes("\xAC\x20\0\0\0\0"sv));
    EXPECT_EQ(Read(ansi, kApps, u"c")->bytes, TextBytes(u"€"));
    EXPECT_EQ(Read(ansi, kApps, u"d")->bytes, Bytes("\xE9\0"sv));
    EXPECT_EQ(Read(ansi, kApps, u"e")->bytes, Bytes("\x80"));
    EXPECT_EQ(Read(MustParse(kAppsLine + "\"a\"=hex(1):5c,54\n"), kApps, u"a")->bytes,
              Bytes("\x5c\x54"));
}

std::string Names(const EditedRegistryText& text, std::u16string_view path) {
    std::string names;
    for (std::size_t index = 0; text.ChildName(text.FindKey(path), index); ++index) {
        EncodeText(TextEncoding::kUtf8, *text.ChildName(text.FindKey(path), index) + u" ", names);
    }
    return names;
}

TEST(EditedRegistryText, KeysFollowTheFileAndMatchInAnyCase) {
    const EditedRegistryText text = MustParse(
        "; before\n[HKEY_LOCAL_MACHINE\\B\\x]\n[\\\\hkey_local_machine\\\\A\\] ; a ] comment\n"
        "@=\"a\"\n[HKEY_LOCAL_MACHINE\\b]\n[HKEY_LOCAL_MACHINE\\a]\n\"\"=\"again\"\n"
        "[HKEY_LOCAL_MACHINE\\C]]\n[HKEY_LOCAL_MACHINE\\D]\n[-hkey_local_machine\\d]\n"
        "[HKEY_LOCAL_MACHINE\\E\\e]\n[HKEY_LOCAL_MACHINE\\D]\n[-HKEY_LOCAL_MACHINE\\none]\n");
    EXPECT_EQ(Names(text, u"HKEY_LOCAL_MACHINE"), "B A C] E D ");
    EXPECT_EQ(Read(text, u"HKEY_LOCAL_MACHINE\\A", u"")->bytes, TextBytes(u"again"));
    EXPECT_NE(text.FindKey(u"hkey_local_machine\\\\c]\\"), 0U);
    EXPECT_NE(MustParse("[HKEY_USERS\\a]\n[-HKEY_USERS]\n").FindKey(u"HKEY_USERS"), 0U);
}

TEST(EditedRegistryText, SubkeysKeepTheirOrderWhileOthersGo) {
    std::string bytes;
    for (int number = 0; number < 100; ++number) {
        bytes += "[HKEY_USERS\\" + std::to_string(number) + "]\n";
    }
    EditedRegistryText text = MustParse(bytes);
    const KeyIndex users = text.FindKey(u"HKEY_USERS");
    const std::tuple<std::size_t, std::u16string, std::u16string> steps[] = {
        {50, u"50", u"10"}, {50, u"51", u"51"}, {50, u"52", u"60"}, {40, u"41", u"2"},
        {95, u"99", u"99"}, {94, u"98", u"97"}, {94, u"", u"0"},    {92, u"98", u"98"}};
    for (const auto& [index, name, removed] : steps) {
        EXPECT_TRUE(text.ChildName(users, index).value_or(u"") == name) << index;
        text.DeleteKey(text.FindKey(u"HKEY_USERS\\" + removed));
    }
}

// Every change to this file is described by what it replaces.
const std::string kHklm = "[HKEY_LOCAL_MACHINE\\Software";
const std::string kEnd = "; the end";
const std::string kFile =
    "; top\r\n" + kHklm + "\\Apps]\r\n\r\n" + kHklm + "\\Apps\\One] ; kept\r\n" +
    "  \"Dir\" =  \"\\\\One\" ;after\r\n; between\r\n\"Odd\"=hex:00,\\\r\n  01\r\n" +
    "\"Sym\"=dword:LOC_X\r\n\r\n; about two\r\n" + kHklm + "\\Apps\\Two]\r\n\"Dir\"=\"two\"\r\n" +
    kHklm + "\\Apps\\Two\\Sub]\r\n\n" + kHklm + "\\Apps\\One]\r\n@=\"last\"\r\n\r\n" + kEnd;
constexpr std::u16string_view kSoftware = u"HKEY_LOCAL_MACHINE\\Software";
constexpr std::u16string_view kOne = u"HKEY_LOCAL_MACHINE\\Software\\Apps\\One";
constexpr std::u16string_view kTwo = u"HKEY_LOCAL_MACHINE\\Software\\Apps\\Two";
constexpr std::u16string_view kSub = u"HKEY_LOCAL_MACHINE\\Software\\Apps\\Two\\Sub";

const struct {
    std::u16string_view path, name;  // what to set
    std::uint32_t type;
    std::vector<std::uint8_t> bytes;
    std::string from, to;
} kChanges[] = {
    {kOne, u"dir", REG_SZ, TextBytes(u"\\1"), R"("\\One")", R"("\\1")"},
    {kOne, u"dir", REG_SZ, Bytes("\\\0b\0"sv), R"("\\One")", R"("\\b")"},
    {kOne, u"dir", REG_DWORD, {1, 0, 0, 0}, R"("\\One")", "dword:00000001"},
    {kOne, u"dir", REG_DWORD, {1}, R"("\\One")", "hex(4):01"},
    {kOne, u"dir", REG_SZ, TextBytes(u"\n"), R"("\\One")", "hex(1):0a,00,00,00"},
    {kOne, u"dir", REG_SZ, Bytes("\0\xD8"sv), R"("\\One")", "hex(1):00,d8"},
    {kOne, u"dir", REG_SZ, Bytes("\0\0\0\0"sv), R"("\\One")", "hex(1):00,00,00,00"},
    {kOne, u"odd", REG_BINARY, {7}, "hex:00,\\\r\n  01", "hex:07"},
    {kOne, u"sym", REG_DWORD, {7, 0, 0, 0}, "dword:LOC_X", "dword:00000007"},
    {kOne, u"\"\\", REG_SZ, {}, "@=\"last\"\r\n", "@=\"last\"\r\n\"\\\"\\\\\"=\"\"\r\n"},
    {kSub, u"", REG_SZ, {}, "Sub]\r\n", "Sub]\r\n@=\"\"\r\n"},
    {kSoftware, u"n", REG_SZ, {}, kEnd, kEnd + "\r\n\r\n" + kHklm + "]\r\n\"n\"=\"\"\r\n"},
    {u"HKEY_USERS", u"n", REG_SZ, {}, kEnd, kEnd + "\r\n\r\n[HKEY_USERS]\r\n\"n\"=\"\"\r\n"},
};

// A file in each of its encodings, after a line that only a whole copy keeps.
std::vector<std::string> Encoded(const std::string& text) {
    return {"; \xE9\x81\x01\r\n" + text, "; \xC3\xA9\xED\xA0\x80\r\n" + text,
            "\xEF\xBB\xBF;\0\r\n"s + text,
            Utf16(u";\0\xD800\xFFFE\r\n"s + std::u16string(text.begin(), text.end()))};
}

TEST(EditedRegistryText, AChangeLeavesEveryOtherByte) {
    const std::vector<std::string> files = Encoded(kFile);
    for (const auto& change : kChanges) {
        const std::vector<std::string> after = Encoded(Replaced(kFile, change.from, change.to));
        for (std::size_t index = 0; index < files.size(); ++index) {
            EditedRegistryText text = MustParse(files[index]);
            EXPECT_EQ(text.Serialize(), files[index]);
            const KeyIndex key = text.FindKey(change.path);
            ASSERT_NE(key, 0U);
            for (const SetResult result : {SetResult::kChanged, SetResult::kUnchanged}) {
                EXPECT_EQ(text.SetValue(key, change.name, change.type, change.bytes), result);
            }
            EXPECT_EQ(text.Serialize(), after[index]);
        }
    }
}

TEST(EditedRegistryText, DeletingTakesTheLinesOfTheSubtreeAlone) {
    EditedRegistryText one = MustParse(kFile);
    const KeyIndex gone = one.FindKey(kOne);
    one.SetValue(gone, u"Dir", REG_SZ, {});
    one.SetValue(gone, u"New", REG_SZ, {});
    one.DeleteKey(gone);
    const std::size_t begin = kFile.find(kHklm + "\\Apps\\One] ;");
    const std::size_t end = kFile.find("; about");
    const std::size_t again = kFile.rfind("[HKEY");
    EXPECT_EQ(one.Serialize(), kFile.substr(0, begin) + kFile.substr(end, again - end) + kEnd);
    EXPECT_EQ(one.FindKey(kOne), 0U);

    EditedRegistryText two = MustParse(kFile);
    two.DeleteKey(two.FindKey(kTwo));
    const std::size_t top = kFile.find(kHklm + "\\Apps\\Two]");
    EXPECT_EQ(two.Serialize(), kFile.substr(0, top) + kFile.substr(again));

    EditedRegistryText parent = MustParse("[HKEY_USERS\\a\\b\\c]\n");
    parent.DeleteKey(parent.FindKey(u"HKEY_USERS\\a\\b\\c"));
    EXPECT_EQ(parent.Serialize(), "\n[HKEY_USERS\\a\\b]\n") << "it outlives its last subkey";
    parent.DeleteKey(parent.FindKey(u"HKEY_USERS\\a"));
    EXPECT_EQ(parent.Serialize(), "");
}

TEST(EditedRegistryText, AddsToFilesWithoutLineEndOrContent) {
    for (const char* const end : {"", "\n", "\r\n", "\r"}) {
        EditedRegistryText text = MustParse("[HKEY_USERS]"s + end);
        text.SetValue(text.FindKey(u"HKEY_USERS"), u"a", REG_DWORD, std::vector<std::uint8_t>(4));
        const std::string line = *end != 0 ? end : "\r\n";
        std::string expected = "[HKEY_USERS]" + line;
        expected.append("\"a\"=dword:00000000").append(line);
        EXPECT_EQ(text.Serialize(), expected);
    }
    EditedRegistryText made = MustParse("");
    made.SetValue(made.FindKey(u"HKEY_USERS"), u"\xDC00", REG_SZ, TextBytes(u"ü"));
    EXPECT_EQ(made.Serialize(), Utf16(u"Windows Registry Editor Version 5.00\r\n\r\n"
                                      u"[HKEY_USERS]\r\n\"\xDC00\"=\"ü\"\r\n"));
}

TEST(EditedRegistryText, EightBitFilesKeepWhatTheyCanAndRefuseTheRest) {
    const std::pair<std::u16string, std::string> fits[] = {{u"gr\u00FC\u20AC", "\"gr\xFC\x80\""},
                                                           {u"\u0416", "hex(1):d0,96,00"},
                                                           {u"\u00C3\u00BC", "\"\xC3\xBC\""}};
    for (const auto& [wide, ansi] : fits) {
        const std::string file = "REGEDIT4\n;\xE9\n[HKEY_USERS]\n";
        EditedRegistryText text = MustParse(file);
        const KeyIndex key = text.FindKey(u"HKEY_USERS");
        EXPECT_EQ(text.SetValue(key, u"v", REG_SZ, TextBytes(wide)), SetResult::kChanged);
        EXPECT_EQ(text.Serialize(), (file + "\"v\"=").append(ansi) + "\n");
        EXPECT_EQ(Read(MustParse(text.Serialize()), u"HKEY_USERS", u"v")->bytes, TextBytes(wide));
        EXPECT_EQ(text.SetValue(key, u"w", REG_SZ, Bytes("odd")), SetResult::kUnfit);
        EXPECT_EQ(text.SetValue(key, u"\u0416", REG_SZ, {}), SetResult::kUnfit);
        EXPECT_EQ(text.SetValue(key, u"a\nb", REG_SZ, {}), SetResult::kUnfit);
    }
    // One that loses its last odd byte stays one.
    EditedRegistryText text = MustParse("[HKEY_USERS]\n\"a\"=\"\xE9\"\n\"b\"=\"\xC3\xBC\"");
    text.SetValue(text.FindKey(u"HKEY_USERS"), u"a", REG_SZ, {});
    EXPECT_EQ(text.Serialize(), "[HKEY_USERS]\n\"a\"=\"\"\n\"b\"=\"\xC3\xBC\"\n; CP1252 \xA4\n");
    EXPECT_EQ(Read(MustParse(text.Serialize()), u"HKEY_USERS", u"b")->bytes,
              TextBytes(u"\u00C3\u00BC"));
}

TEST(EditedRegistryText, ACutFileIsAFaultOrKeepsAllItHas) {
    for (const std::string& whole : Encoded("REGEDIT4\r\n" + kFile)) {
        for (std::size_t size = 1; size < whole.size(); ++size) {
            Result<EditedRegistryText> cut = EditedRegistryText::Parse(whole.substr(0, size));
            if (!cut) {
                continue;
            }
            EXPECT_EQ(cut->SetValue(cut->FindKey(u"HKEY_USERS"), u"n", REG_SZ, {}),
                      SetResult::kChanged);
            const std::string written = cut->Serialize();
            EXPECT_EQ(written.substr(0, size), whole.substr(0, size));
            EXPECT_TRUE(Read(MustParse(written), u"HKEY_USERS", u"n")) << size;
        }
    }
}

}  // namespace
}  // namespace platform
