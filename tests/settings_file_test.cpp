#include "settings/settings_file.h"

#include <gtest/gtest.h>

#include "core/application.h"
#include "core/options.h"
#include "core/wide_text.h"
#include "platform/file_store.h"
#include "tests/apply_device.h"
#include "tests/settings_bytes.h"

namespace {

using namespace std::string_literals;

class SettingsFileTest : public testing::Test {
  protected:
    // There are no controls that a load could fill.
    SettingsFileTest() { g_Silent = true; }

    std::int32_t Load(CSettings& settings,
                      const std::u16string& module = u"\\P\\Fennelbright.exe") {
        platform::FileStore store(device_.OpenFiles(), module);
        const platform::StoreInUse inUse(store);
        const platform::WindowsInUse windowsInUse(windows_);
        return LoadSettings(settings);
    }

    void Put(const std::string& content) { device_.Make({"P/settings.dat=" + content}); }

    TemporaryDevice device_;
    CollectedBoxes windows_;
};

constexpr std::uint32_t kAll = 0x1FFFFFF;

std::string WholeFile() {
    std::string file = Number(kAll);
    for (const WCHAR digit : u"12345678"s) {
        file += Record(u"\\Dir "s + digit + u"\\");
    }
    return file + Number(1) + Number(2) + Number(0) + Number(7);
}

std::u16string TextOf(const SettingsText& text) {
    return text == nullptr ? u"-" : text.get();
}

TEST_F(SettingsFileTest, TextsAndPositionsStandInTheirOwnOrder) {
    Put(WholeFile() + "what is behind is not read");
    CSettings all;
    EXPECT_EQ(Load(all), static_cast<std::int32_t>(kAll));
    WCHAR digit = u'1';
    for (const SettingsText* const text :
         {&all.UserDir1, &all.UserDir2, &all.CustomExtension, &all.IeCacheDir, &all.AvantGoDir,
          &all.FavoritesDir, &all.FontsDir, &all.MyDocumentsDir}) {
        EXPECT_EQ(TextOf(*text), u"\\Dir "s + digit++ + u"\\");
    }
    EXPECT_EQ(all.IeCacheLimitIndex, 1);
    EXPECT_EQ(all.IeHistoryLimitIndex, 2);
    EXPECT_EQ(all.IeCookieLimitIndex, 0);
    EXPECT_EQ(all.FontCacheIndex, 7);
}

// Whatever is missing is null or 0 and never half of what was written.
TEST_F(SettingsFileTest, AFileThatIsCutAnywhereGivesWholeTextsOrNone) {
    const std::string whole = WholeFile();
    CSettings full;
    Put(whole);
    Load(full);
    for (std::size_t length = 0; length < whole.size(); ++length) {
        Put(whole.substr(0, length));
        CSettings cut;
        EXPECT_EQ(Load(cut), length < 4 ? 0 : static_cast<std::int32_t>(kAll));
        std::size_t end = 4;  // of the record in the whole file
        for (const Option& option : AllOptions()) {
            if (option.text != nullptr) {
                end += Record(u"\\Dir 1\\").size();
                const SettingsText& text = cut.*option.text;
                ASSERT_EQ(text != nullptr, length >= end) << "cut at " << length;
                if (text != nullptr) {
                    ASSERT_EQ(std::u16string(text.get()), (full.*option.text).get());
                }
            }
        }
        for (const Option& option : AllOptions()) {
            if (option.position != nullptr) {
                end += 4;
                ASSERT_EQ(cut.*option.position, length >= end ? full.*option.position : 0)
                    << "cut at " << length;
            }
        }
    }
}

TEST_F(SettingsFileTest, OddContent) {
    const std::u16string longest(1023, u'x');
    const struct {
        std::string content;
        std::uint32_t mask;
        std::u16string first, second;  // "-" for null
    } cases[] = {
        {Number(0), 0, u"-", u"-"},
        {std::string(200, '\xFF'), static_cast<std::uint32_t>(kNoMask), u"-", u"-"},
        {Number(0xFE000001) + Record(u"\\a\\"), 0xFE000001, u"\\a\\", u"-"},
        {Number(3) + Record(u"") + Record(u"\\b\\"), 3, u"", u"\\b\\"},
        {Number(3) + Record(longest) + Record(u"b"), 3, longest, u"b"},
        {Number(3) + Record(longest + u"x") + Record(u"b"), 3, u"-", u"-"},
        {Number(3) + Number(0xFFFFFFFF) + std::string(9000, 'x'), 3, u"-", u"-"},
        {Number(3) + Record(u"\\a\0b\\"s) + Record(u"c"), 3, u"\\a", u"c"},
    };
    for (const auto& expected : cases) {
        Put(expected.content);
        CSettings settings;
        EXPECT_EQ(static_cast<std::uint32_t>(Load(settings)), expected.mask);
        EXPECT_EQ(TextOf(settings.UserDir1), expected.first);
        EXPECT_EQ(TextOf(settings.UserDir2), expected.second);
    }
    EXPECT_TRUE(windows_.boxes.empty());
}

TEST_F(SettingsFileTest, WithoutAFileThereIsNoMask) {
    for (const char* const inItsPlace :
         {"P/", "P/settings.dat/", "P/settings.dat|", "P/settings.dat>../real real="}) {
        const TemporaryDevice device;
        device.Make(Words(inItsPlace));
        platform::FileStore store(device.OpenFiles(), u"\\P\\Fennelbright.exe");
        const platform::StoreInUse inUse(store);
        CSettings settings;
        const Entries before = device.Listing();
        EXPECT_EQ(LoadSettings(settings), kNoMask);
        EXPECT_EQ(device.Listing(), before);
    }
}

TEST_F(SettingsFileTest, ThePathIsTheModulesLessSixteenCharacters) {
    device_.Make({"P/settings.dat=" + Number(4), "P/Q/settings.dat=" + Number(8),
                  "settings.dat=" + Number(16)});
    const std::pair<std::u16string, std::int32_t> cases[] = {
        {u"\\P\\Fennelbright.exe", 4},
        {u"\\P\\Q\\sixteen-char.exe", 8},
        {u"\\P\\Q\\name14char.exe", 4},  // two characters too many go
        {u"0123456789abcdef", 16},
        {u"\\P\\short.exe", kNoMask},
        {u"", kNoMask},
        {std::u16string(2000, u'x'), kNoMask},
    };
    for (const auto& [module, mask] : cases) {
        windows_.boxes.clear();
        CSettings settings;
        EXPECT_EQ(Load(settings, module), mask);
        EXPECT_EQ(windows_.boxes, Entries(mask == kNoMask ? 1 : 0,
                                          "[Error!!!] Failed retrieving application directory"));
    }
}

}  // namespace
