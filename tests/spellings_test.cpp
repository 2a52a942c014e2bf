#include "platform/spellings.h"

#include <dirent.h>
#include <gtest/gtest.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <thread>

#include "platform/descriptor.h"
#include "tests/temporary_device.h"

namespace {

int g_readings = 0;
bool g_readingFails = false;

}  // namespace

// Stands in front of the C library's function and counts.
extern "C" ssize_t getdents64(int directory, void* buffer, std::size_t size) noexcept {
    ++g_readings;
    if (g_readingFails) {
        errno = EIO;
        return -1;
    }
    return syscall(SYS_getdents64, directory, buffer, size);
}

namespace {

std::string Found(const platform::Result<std::optional<platform::HostName>>& found) {
    if (!found) {
        return "failed";
    }
    return *found ? std::string((*found)->view()) : "none";
}

std::u16string Numbered(std::u16string name, int number) {
    const std::string digits = std::to_string(number);
    return name.append(digits.begin(), digits.end());
}

TEST(SpellingsTest, FindsTheExactNameOrTheFirst) {
    const TemporaryDevice device;
    device.Make({"abc=", "ABC=", "aBc=", "\xC3\x84.txt="});
    const platform::Descriptor files = device.OpenFiles();
    platform::Spellings spellings;
    const std::pair<const WCHAR*, const char*> cases[] = {{u"aBc", "aBc"},
                                                          {u"Abc", "ABC"},
                                                          {u"\u00E4.TXT", "\xC3\x84.txt"},
                                                          {u"abcd", "none"},
                                                          {u"..", "none"}};
    for (int round = 0; round < 3; ++round) {
        for (const auto& [name, found] : cases) {
            EXPECT_EQ(Found(spellings.Find(files.get(), name)), found);
        }
        EXPECT_EQ(Found(spellings.Find(-1, u"abc")), "failed");
        std::this_thread::sleep_for(std::chrono::milliseconds(40));
    }
}

// What is kept in mind of a directory must never hide what has been made in it since, however soon.
TEST(SpellingsTest, SeesWhatWasMadeAfterALookInVain) {
    const TemporaryDevice device;
    const platform::Descriptor files = device.OpenFiles();
    platform::Spellings spellings;
    for (int number = 0; number < 60; ++number) {
        if (number % 6 == 0) {
            std::this_thread::sleep_for(std::chrono::milliseconds(30));
        }
        const std::string name = std::string(1, 'x') + std::to_string(number);
        const std::u16string wanted = Numbered(u"X", number);
        EXPECT_EQ(Found(spellings.Find(files.get(), wanted)), "none");
        EXPECT_EQ(Found(spellings.Find(files.get(), wanted)), "none");
        WriteFile(device.files() + "/" + name, "");
        EXPECT_EQ(Found(spellings.Find(files.get(), wanted)), name);
    }
}

TEST(SpellingsTest, ReadsADirectoryOnceForLooksThatBelongTogether) {
    const TemporaryDevice device;
    for (int number = 0; number < 1000; ++number) {
        WriteFile(device.files() + "/name " + std::to_string(number), "");
    }
    const platform::Descriptor files = device.OpenFiles();
    platform::Spellings spellings;
    spellings.BeginLooks();
    g_readingFails = true;
    EXPECT_EQ(Found(spellings.Find(files.get(), u"NAME 7")), "failed");
    g_readingFails = false;
    EXPECT_EQ(Found(spellings.Find(files.get(), u"NAME 7")), "name 7");
    const int first = g_readings;
    for (int number = 1000; number < 2000; ++number) {
        EXPECT_EQ(Found(spellings.Find(files.get(), Numbered(u"NAME ", number))), "none");
        EXPECT_EQ(Found(spellings.Find(files.get(), u"NAME 7")), "name 7");
    }
    EXPECT_EQ(g_readings, first);
    WriteFile(device.files() + "/name 1000", "");
    spellings.EndLooks();
    EXPECT_EQ(Found(spellings.Find(files.get(), u"NAME 1000")), "name 1000");
}

TEST(NameSetTest, DeniesNothingThatItHolds) {
    platform::NameSet set;
    int held = 0;
    for (int number = 0; number < 4000; ++number) {
        set.Add(Numbered(u"Name", number));
        EXPECT_TRUE(set.MayHold(Numbered(u"NAME", number)));
        held += set.MayHold(Numbered(u"other", number)) ? 1 : 0;
    }
    EXPECT_LT(held, 3);
}

}  // namespace
