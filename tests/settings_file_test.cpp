#include "settings/settings_file.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/application.h"
#include "core/options.h"
#include "core/wide_text.h"
#include "platform/file_store.h"
#include "platform/host_text.h"
#include "platform/no_windows.h"
#include "platform/window_system.h"
#include "tests/temporary_device.h"

namespace {

using namespace std::string_literals;

// A window system that keeps the boxes it was asked to show.
class BoxCollector : public platform::NoWindows {
  public:
    int MessageBoxW(HWND /*owner*/, const WCHAR* text, const WCHAR* caption, UINT type) override {
        boxes.push_back(platform::ReadableText(caption) + ": " + platform::ReadableText(text) +
                        (type == MB_OK ? "" : "?"));
        return IDOK;
    }

    std::vector<std::string> boxes;
};

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
    BoxCollector windows_;
};

std::string Wide(const std::u16string& text) {
    std::string bytes;
    for (const char16_t unit : text) {
        bytes += static_cast<char>(unit);
        bytes += static_cast<char>(unit >> 8);
    }
    return bytes;
}

std::string Number(std::uint32_t number) {
    return Wide({static_cast<char16_t>(number), static_cast<char16_t>(number >> 16)});
}

std::string Record(const std::u16string& text) {
    return Number(static_cast<std::uint32_t>(text.size())) + Wide(text);
}

constexpr std::uint32_t kAll = 0x1FFFFFF;

std::string WholeFile() {
    std::string file = Number(kAll);
    for (const WCHAR digit : u"12345678"s) {
        file += Record(u"\\Dir "s + digit + u"\\");
    }
    return file + Number(1) + Number(2) + Number(0) + Number(7);
}

TEST_F(SettingsFileTest, TextsAndPositionsStandInTheirOwnOrder) {
    Put("\x01\x08\0\0\x02\0\0\0\x5C\0\x41\0\x01\0\0\0"s);
    CSettings few;
    EXPECT_EQ(Load(few), 0x801);
    EXPECT_EQ(std::u16string(few.UserDir1.get()), u"\\A");
    EXPECT_EQ(few.IeCacheLimitIndex, 1);
    EXPECT_EQ(few.UserDir2, nullptr);

    Put(WholeFile() + "what is behind is not read");
    CSettings all;
    EXPECT_EQ(Load(all), static_cast<std::int32_t>(kAll));
    const SettingsText* const texts[] = {&all.UserDir1,   &all.UserDir2,      &all.CustomExtension,
                                         &all.IeCacheDir, &all.AvantGoDir,    &all.FavoritesDir,
                                         &all.FontsDir,   &all.MyDocumentsDir};
    WCHAR digit = u'1';
    for (const SettingsText* const text : texts) {
        ASSERT_NE(*text, nullptr);
        EXPECT_EQ(std::u16string(text->get()), u"\\Dir "s + digit++ + u"\\");
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
    const struct {
        const char* name;
        std::string content;
        std::int32_t mask;
        std::u16string first;  // "-" for null
        std::u16string second;
    } cases[] = {
        {"nothing ticked", Number(0), 0, u"-", u"-"},
        {"only set bits", std::string(200, '\xFF'), kNoMask, u"-", u"-"},
        {"bits without an option", Number(0xFE000001) + Record(u"\\a\\"),
         static_cast<std::int32_t>(0xFE000001), u"\\a\\", u"-"},
        {"an empty text", Number(3) + Record(u"") + Record(u"\\b\\"), 3, u"", u"\\b\\"},
        {"the longest text", Number(3) + Record(std::u16string(1023, u'x')) + Record(u"b"), 3,
         std::u16string(1023, u'x'), u"b"},
        {"a count that is too large", Number(3) + Record(std::u16string(1024, u'x')) + Record(u"b"),
         3, u"-", u"-"},
        {"an absurd count", Number(3) + Number(0xFFFFFFFF) + std::string(9000, 'x'), 3, u"-", u"-"},
        {"a NUL in a text", Number(3) + Record(u"\\a\0b\\"s) + Record(u"c"), 3, u"\\a", u"c"},
    };
    const auto textOf = [](const SettingsText& text) {
        return text == nullptr ? u"-"s : std::u16string(text.get());
    };
    for (const auto& expected : cases) {
        SCOPED_TRACE(expected.name);
        Put(expected.content);
        CSettings settings;
        EXPECT_EQ(Load(settings), expected.mask);
        EXPECT_EQ(textOf(settings.UserDir1), expected.first);
        EXPECT_EQ(textOf(settings.UserDir2), expected.second);
    }
    EXPECT_TRUE(windows_.boxes.empty());
}

TEST_F(SettingsFileTest, WithoutAFileThereIsNoMask) {
    const std::vector<std::string> inItsPlace[] = {
        {}, {"P/"}, {"P/settings.dat/"}, {"P/settings.dat|"}, {"P/settings.dat>../real", "real="}};
    for (const auto& entries : inItsPlace) {
        const TemporaryDevice device;
        device.Make(entries);
        platform::FileStore store(device.OpenFiles(), u"\\P\\Fennelbright.exe");
        const platform::StoreInUse inUse(store);
        CSettings settings;
        const auto before = device.Listing();
        EXPECT_EQ(LoadSettings(settings), kNoMask);
        EXPECT_EQ(device.Listing(), before);
    }
}

TEST_F(SettingsFileTest, ThePathIsTheModulesLessSixteenCharacters) {
    device_.Make(
        {"P/settings.dat=\x04\0\0\0"s, "P/Q/settings.dat=\x08\0\0\0"s, "settings.dat=\x10\0\0\0"s});
    const struct {
        std::u16string module;
        std::int32_t mask;
        std::size_t boxes;
    } cases[] = {
        {u"\\P\\Fennelbright.exe", 0x04, 0},
        {u"\\P\\Q\\sixteen-char.exe", 0x08, 0},
        {u"\\P\\Q\\name14char.exe", 0x04, 0},  // two characters too many go
        {u"0123456789abcdef", 0x10, 0},
        {u"\\P\\short.exe", kNoMask, 1},
        {u"", kNoMask, 1},
        {std::u16string(2000, u'x'), kNoMask, 1},
    };
    for (const auto& expected : cases) {
        windows_.boxes.clear();
        CSettings settings;
        EXPECT_EQ(Load(settings, expected.module), expected.mask);
        EXPECT_EQ(windows_.boxes.size(), expected.boxes);
        for (const std::string& box : windows_.boxes) {
            EXPECT_EQ(box, "Error!!!: Failed retrieving application directory");
        }
    }
}

TEST_F(SettingsFileTest, WhatIsWrittenIsReadBack) {
    for (const std::string& content :
         {WholeFile(), Number(0), Number(OPT_NO_WINDOW_ANIMATION),
          Number(1) + Record(std::u16string(1023, u'\xFFFD')), Number(1) + Record(u"")}) {
        Put(content);
        CSettings settings;
        const auto mask = static_cast<std::uint32_t>(Load(settings));
        platform::FileStore store(device_.OpenFiles(), u"\\P\\Fennelbright.exe");
        const platform::StoreInUse inUse(store);
        std::FILE* const file = OpenSettingsForWriting();
        ASSERT_NE(file, nullptr);
        WriteSettings(file, mask, settings);
        EXPECT_EQ(std::fclose(file), 0);
        EXPECT_EQ(ReadFile(device_.files() + "/P/settings.dat"), content);
        EXPECT_EQ(settings.UserDir1, nullptr);
    }
}

}  // namespace
