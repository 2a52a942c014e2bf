#include "platform/files/case_insensitive_lookup.h"

#include <chrono>
#include <thread>

#include "platform/io/descriptor.h"
#include "tests/support/temporary_device.h"

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

TEST(CaseInsensitiveLookupTest, FindsTheExactNameOrTheFirst) {
    const TemporaryDevice device({"abc=", "ABC=", "aBc=", "\xC3\x84.txt="});
    const platform::FileTree tree(device.OpenFiles());
    platform::CaseInsensitiveLookup spellings;
    const std::pair<const WCHAR*, const char*> cases[] = {{u"aBc", "aBc"},
                                                          {u"Abc", "ABC"},
                                                          {u"\u00E4.TXT", "\xC3\x84.txt"},
                                                          {u"abcd", "none"},
                                                          {u"..", "none"}};
    for (int round = 0; round < 3; ++round) {
        for (const auto& [name, found] : cases) {
            EXPECT_EQ(Found(spellings.Find(tree, tree.root(), name)), found);
        }
        EXPECT_EQ(Found(spellings.Find(tree, platform::OpenedDirectory(), u"abc")), "failed");
        std::this_thread::sleep_for(std::chrono::milliseconds(40));
    }
}

// What is kept in mind of a directory must never hide what has been made in it since, however soon.
TEST(CaseInsensitiveLookupTest, SeesWhatWasMadeAfterALookInVain) {
    const TemporaryDevice device;
    const platform::FileTree tree(device.OpenFiles());
    platform::CaseInsensitiveLookup spellings;
    for (int number = 0; number < 60; ++number) {
        if (number % 6 == 0) {
            std::this_thread::sleep_for(std::chrono::milliseconds(30));
        }
        const std::string name = std::string(1, 'x') + std::to_string(number);
        const std::u16string wanted = Numbered(u"X", number);
        EXPECT_EQ(Found(spellings.Find(tree, tree.root(), wanted)), "none");
        EXPECT_EQ(Found(spellings.Find(tree, tree.root(), wanted)), "none");
        WriteFile(device.files() + "/" + name, "");
        EXPECT_EQ(Found(spellings.Find(tree, tree.root(), wanted)), name);
    }
}

TEST(CaseInsensitiveLookupTest, KeepsWhatWasReadForLooksThatBelongTogetherAndNoLonger) {
    const TemporaryDevice device({"Here="});
    const platform::FileTree tree(device.OpenFiles());
    platform::CaseInsensitiveLookup spellings;
    for (const char* const made : {"new", "newer"}) {
        spellings.BeginLooks();
        EXPECT_EQ(Found(spellings.Find(tree, tree.root(), u"HERE")), "Here");
        device.Make({std::string(made) + '='});
        EXPECT_EQ(Found(spellings.Find(tree, tree.root(), u"NEWER")), "none");
        EXPECT_EQ(Found(spellings.Find(tree, tree.root(), u"HERE")), "Here");
    }
    spellings.EndLooks();
    EXPECT_EQ(Found(spellings.Find(tree, tree.root(), u"NEWER")), "newer");
}

TEST(CaseInsensitiveLookupTest, ASetOfNamesDeniesNoneThatItHolds) {
    platform::NameHashSet set;
    int held = 0;
    for (int number = 0; number < 4000; ++number) {
        set.Add(Numbered(u"Name", number));
        EXPECT_TRUE(set.MayHold(Numbered(u"NAME", number)));
        held += set.MayHold(Numbered(u"other", number)) ? 1 : 0;
    }
    EXPECT_LT(held, 3);
}

}  // namespace
