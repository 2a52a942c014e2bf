#include "platform/spellings.h"

#include <fcntl.h>
#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <thread>

#include "platform/descriptor.h"
#include "tests/temporary_device.h"

namespace {

std::string Numbered(std::string name, int number) {
    name += std::to_string(number);
    return name;
}

std::u16string Wide(const std::string& ascii) {
    return {ascii.begin(), ascii.end()};
}

std::string Found(const std::optional<platform::HostName>& name) {
    return name ? std::string(name->view()) : "none";
}

TEST(SpellingsTest, FindsTheExactNameOrTheFirst) {
    const TemporaryDevice device;
    device.Make({"abc=", "ABC=", "aBc=", "\xC3\x84.txt="});
    const platform::Descriptor files = device.OpenFiles();
    platform::Spellings spellings;
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(Found(spellings.Find(files.get(), u"aBc")), "aBc");
        EXPECT_EQ(Found(spellings.Find(files.get(), u"Abc")), "ABC");
        EXPECT_EQ(Found(spellings.Find(files.get(), u"\u00E4.TXT")), "\xC3\x84.txt");
        EXPECT_EQ(Found(spellings.Find(files.get(), u"abcd")), "none");
        EXPECT_EQ(Found(spellings.Find(files.get(), u"..")), "none");
        EXPECT_EQ(Found(spellings.Find(-1, u"abc")), "none");
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
        const std::string name = Numbered("x", number);
        const std::u16string wanted = Wide(Numbered("X", number));
        EXPECT_EQ(Found(spellings.Find(files.get(), wanted)), "none");
        EXPECT_EQ(Found(spellings.Find(files.get(), wanted)), "none");
        WriteFile(device.files() + "/" + name, "");
        EXPECT_EQ(Found(spellings.Find(files.get(), wanted)), name);
    }
}

TEST(NameFilterTest, DeniesNothingThatItHolds) {
    platform::NameFilter filter;
    int held = 0;
    for (int number = 0; number < 4000; ++number) {
        filter.Add(Wide(Numbered("Name", number)));
        EXPECT_TRUE(filter.MayHold(Wide(Numbered("NAME", number))));
    }
    for (int number = 0; number < 1000; ++number) {
        held += filter.MayHold(Wide(Numbered("other", number))) ? 1 : 0;
    }
    EXPECT_LT(held, 200);
}

}  // namespace
