#include "platform/shortcut_file.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "platform/directory_store.h"
#include "platform/host_text.h"
#include "tests/temporary_device.h"

namespace {

using namespace std::string_literals;

std::string Shown(const std::optional<std::u16string>& target) {
    return target ? platform::ReadableText(*target) : "none";
}

TEST(ShortcutFileTest, ReadsTheCommandLine) {
    const struct {
        std::string content;
        const char* target;
    } cases[] = {
        {"23#\\Windows\\ToolViewer.exe", "\\Windows\\ToolViewer.exe"},
        {"1#\\Windows\\ToolViewer.exe", "\\Windows\\ToolViewer.exe"},
        {"0#\\Windows\\ToolViewer.exe", "\\Windows\\ToolViewer.exe"},
        {"99999999999999999999#\\a", "\\a"},
        {"40#\\Windows\\MyApp.exe parameter1 parameter2",
         "\\Windows\\MyApp.exe parameter1 parameter2"},
        {"34#\"\\My Documents\\Templates\\Memo.psw\"", "\"\\My Documents\\Templates\\Memo.psw\""},
        {"16#\\windows\\app.exe\r\n", "\\windows\\app.exe"},
        {"16#\\windows\\app.exe \r\n\r\n", "\\windows\\app.exe"},
        {"16#\\windows\\app.exe\0\0"s, "\\windows\\app.exe"},
        {"16#\\windows\\app.exe\n\x1A", "\\windows\\app.exe"},
        {"2# \\a ", "\\a"},
        {"63#\\Windows\\iexplore.exe -http://www.example.com?\\Windows\\test.exe,101",
         "\\Windows\\iexplore.exe -http://www.example.com"},
        {";Pictures & Videos\r\n22#:MSPIMG?pimgres.dll,-101", ":MSPIMG"},
        {";one\n;two\n\n2#\\a", "\\a"},
        {"\xEF\xBB\xBF"
         "2#\\a",
         "\\a"},
        {"\xFF\xFE"
         "2\0#\0\\\0a\0"s,
         "\\a"},
        {"7#\\B\xC3\xBC"
         "cher",
         "\\B\xC3\xBC"
         "cher"},
        {"7#\\B\xFC"
         "cher",
         "\\B\xC3\xBC"
         "cher"},
        {"1#\\", "\\"},
        {"0#", ""},
        {"", "none"},
        {"#\\a", "none"},
        {"12", "none"},
        {"12 #\\a", "none"},
        {"\\Windows\\calc.exe", "none"},
        {";12#\\a", "none"},
        {";", "none"},
        {"\xFF\xFE", "none"},
    };
    for (const auto& test : cases) {
        EXPECT_EQ(Shown(platform::ShortcutTarget(test.content)), test.target) << test.content;
    }
}

TEST(ShortcutFileTest, WritesTheTrueNumberOfCharacters) {
    EXPECT_EQ(platform::ShortcutContent(u"\"\\a b\\x.exe\" silent\""),
              "20#\"\\a b\\x.exe\" silent\"");
    EXPECT_EQ(platform::ShortcutContent(u"\\B\u00FC\U0001D11E"), "5#\\B\xC3\xBC\xF0\x9D\x84\x9E");
    EXPECT_EQ(platform::ShortcutContent(u""), "0#");
}

class ShortcutStoreTest : public testing::Test {
  protected:
    ShortcutStoreTest()
        : directory_(open(device_.path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)),
          store_(device_.OpenFiles(), u"\\x.exe", OpenRegistry()) {}

    std::unique_ptr<platform::Registry> OpenRegistry() {
        std::string error;
        return platform::Registry::Open(directory_.get(), error);
    }

    // "none" when the store says that it is no shortcut.
    std::string TargetOf(const WCHAR* path, int limit = 1024) {
        std::u16string buffer(1024, u'x');
        return store_.SHGetShortcutTarget(path, buffer.data(), limit) != 0
                   ? platform::ReadableText(buffer.c_str())
                   : "none";
    }

    TemporaryDevice device_;
    platform::Descriptor directory_;
    platform::DirectoryStore store_;
};

TEST_F(ShortcutStoreTest, TellsByContentAndNotByName) {
    device_.Make({"a.txt=2#\\b", "a.lnk=hello", "dir.lnk/", "link.lnk>a.txt", "pipe.lnk|"});
    EXPECT_EQ(TargetOf(u"\\A.TXT"), "\\b");
    for (const WCHAR* const path :
         {u"\\a.lnk", u"\\dir.lnk", u"\\link.lnk", u"\\pipe.lnk", u"\\gone.lnk", u"\\", u""}) {
        EXPECT_EQ(TargetOf(path), "none") << platform::ReadableText(path);
    }
}

TEST_F(ShortcutStoreTest, GivesWholeTextsOnly) {
    device_.Make({"fits=1023#\\" + std::string(1022, 'a'), "long=1024#\\" + std::string(1023, 'a'),
                  "three=3#\\ab", "padded=2#\\a" + std::string(5000, ' ')});
    EXPECT_EQ(TargetOf(u"\\fits"), "\\" + std::string(1022, 'a'));
    EXPECT_EQ(TargetOf(u"\\long"), "none");
    EXPECT_EQ(TargetOf(u"\\three", 4), "\\ab");
    EXPECT_EQ(TargetOf(u"\\three", 3), "none");
    EXPECT_EQ(TargetOf(u"\\three", 0), "none");
    EXPECT_EQ(TargetOf(u"\\padded"), "none");
}

TEST_F(ShortcutStoreTest, MakesShortcutsUnderNewNamesOnly) {
    EXPECT_NE(store_.SHCreateShortcut(u"\\a.lnk", u"\\b c"), 0);
    EXPECT_EQ(TargetOf(u"\\a.lnk"), "\\b c");
    const std::vector<std::string> listing = {"a.lnk=4#\\b c", "dir/", "link>nowhere"};
    device_.Make({"dir/", "link>nowhere"});
    for (const WCHAR* const path :
         {u"\\a.lnk", u"\\A.LNK", u"\\dir", u"\\link", u"\\none\\a.lnk", u"\\c\\", u"\\c*", u""}) {
        EXPECT_EQ(store_.SHCreateShortcut(path, u"\\x"), 0) << platform::ReadableText(path);
    }
    EXPECT_EQ(device_.Listing(), listing);
}

}  // namespace
