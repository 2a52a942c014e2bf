#include "engine/folder_relocation.h"

#include <gtest/gtest.h>

#include "core/options.h"
#include "tests/apply_device.h"

namespace {

using Strings = std::vector<std::string>;

struct FolderCase {
    std::uint32_t option;
    const char* key;
    const char* value;
    const char* keyMissing;
    const char* valueMissing;
};

constexpr FolderCase kFolders[] = {
    {OPT_MOVE_AVANTGO, "[HKEY_CURRENT_USER\\Software\\AvantGo]\n", "DatabaseLocation",
     "[Error] Unable to locate AvantGo cache", "[Error] Unable to locate AvantGo cache directory"},
    {OPT_MOVE_FAVORITES, "[HKEY_LOCAL_MACHINE\\Explorer\\Shell Folders]\n", "Favorites",
     "[Error] Unable to locate Favorites", "[Error] Unable to locate Favorties directory"},
    {OPT_MOVE_FONTS, "[HKEY_LOCAL_MACHINE\\Explorer\\Shell Folders]\n", "Fonts",
     "[Error] Unable to locate Fonts", "[Error] Unable to locate Fonts directory"},
    {OPT_MOVE_MYDOCS, "[HKEY_LOCAL_MACHINE\\Explorer\\Shell Folders]\n", "My Documents",
     "[Error] Unable to locate My Documents", "[Error] Unable to locate My Documents directory"},
};

std::string Registry(const FolderCase& folder, const std::string& data) {
    return std::string(kQuietTweaks) + folder.key + "\"" + folder.value + "\"=" + data + "\n";
}

const Strings kFiles = {"Old/a=1", "Old/Sub/b=2", "New/"};
const Strings kUnmoved = {"New/", "Old/", "Old/Sub/", "Old/Sub/b=2", "Old/a=1"};

TEST(FolderRelocationTest, TellsOfMissingKeysAndValues) {
    for (const FolderCase& folder : kFolders) {
        ApplyInput input{kFiles, kQuietTweaks, folder.option, {{folder.option, u"\\New\\"}}};
        const ApplyResult noKey = ApplySilently(input);
        EXPECT_EQ(noKey.boxes, (Strings{folder.keyMissing, folder.valueMissing}));
        EXPECT_EQ(noKey.files, kUnmoved);
        input.registry = std::string(kQuietTweaks) + folder.key;
        const ApplyResult noValue = ApplySilently(input);
        EXPECT_EQ(noValue.boxes, Strings{folder.valueMissing});
        EXPECT_EQ(noValue.files, kUnmoved);
        EXPECT_EQ(noValue.registry, input.registry);
    }
}

struct MoveCase {
    const char* what;
    const char* data;    // of the value, before
    const WCHAR* typed;  // null: the settings hold none
    const char* dataAfter;
    Strings files;
    bool noted = false;
};

const Strings kMovedFiles = {"New/", "New/Sub/", "New/Sub/b=2", "New/a=1", "Old/"};

const MoveCase kMoves[] = {
    {"moved", R"("\\Old")", u"\\New\\", R"("\\New\\")", kMovedFiles},
    {"old one with a backslash", R"("\\old\\")", u"\\New\\", R"("\\New\\")", kMovedFiles},
    {"typed without a backslash", R"("\\Old")", u"\\new", R"("\\new")", kMovedFiles},
    {"old one without terminator", "hex:5c,00,4f,00,6c,00,64,00", u"\\New\\", R"("\\New\\")",
     kMovedFiles},
    {"empty destination", R"("\\Old")", u"", R"("\\Old")", kUnmoved},
    {"no destination", R"("\\Old")", nullptr, R"("\\Old")", kUnmoved},
    {"missing destination", R"("\\Old")", u"\\None\\", R"("\\None\\")", kUnmoved},
    {"missing source", R"("\\None")", u"\\New\\", R"("\\New\\")", kUnmoved},
    {"same place", R"("\\Old")", u"\\OLD\\\\", R"("\\OLD\\\\")", kUnmoved},
    {"into itself",
     R"("\\Old")",
     u"\\Old\\Sub\\",
     R"("\\Old\\Sub\\")",
     {"New/", "Old/", "Old/Sub/", "Old/Sub/a=1", "Old/Sub/b=2"}},
    {"out of a part",
     R"("\\Old\\Sub")",
     u"\\Old\\",
     R"("\\Old\\")",
     {"New/", "Old/", "Old/Sub/", "Old/a=1", "Old/b=2"}},
    {"root", R"("\\")", u"\\New\\", R"("\\")", kUnmoved, true},
    {"root, doubled", R"("\\\\\\")", u"\\New\\", R"("\\\\\\")", kUnmoved, true},
    {"empty", R"("")", u"\\New\\", R"("")", kUnmoved, true},
    {"relative", R"("Old")", u"\\New\\", R"("Old")", kUnmoved, true},
    {"half a character", "hex:5c,00,4f,00,6c,00,64", u"\\New\\", "hex:5c,00,4f,00,6c,00,64",
     kUnmoved, true},
    {"pattern", R"("\\Ol?")", u"\\New\\", R"("\\New\\")", kUnmoved},
};

TEST(FolderRelocationTest, MovesWhatIsThereAndWritesTheNewPlace) {
    for (const FolderCase& folder : kFolders) {
        for (const MoveCase& move : kMoves) {
            ApplyInput input{kFiles, Registry(folder, move.data), folder.option};
            if (move.typed != nullptr) {
                input.texts = {{folder.option, move.typed}};
            }
            const ApplyResult result = ApplySilently(input);
            EXPECT_EQ(result.files, move.files) << folder.value << ", " << move.what;
            EXPECT_EQ(result.registry, Registry(folder, move.dataAfter))
                << folder.value << ", " << move.what;
            EXPECT_EQ(result.notes.empty(), !move.noted) << result.notes << move.what;
            EXPECT_EQ(result.boxes, Strings()) << move.what;
            EXPECT_EQ(result.bytesCleaned, 0U);
        }
    }
}

TEST(FolderRelocationTest, LosesNothingWhateverFails) {
    const FolderCase& folder = kFolders[1];
    const ApplyInput input{
        kFiles, Registry(folder, R"("\\Old")"), folder.option, {{folder.option, u"\\New\\"}}};
    int calls = 1;
    for (int failing = 1; failing <= calls; ++failing) {
        const ApplyResult result = ApplySilently(input, failing, &calls);
        for (const std::string file : {"a=1", "b=2"}) {
            EXPECT_EQ(
                std::count_if(result.files.begin(), result.files.end(),
                              [&file](const std::string& entry) { return entry.ends_with(file); }),
                1)
                << file << ", call " << failing;
        }
    }
}

const std::string kApps = "[HKEY_LOCAL_MACHINE\\Software\\Apps";

std::string App(const std::string& name, const std::string& values) {
    return kApps + '\\' + name + "]\n" + values + "\n";
}

struct KeyCase {
    const char* what;
    std::string values;
    bool stays;
};

const KeyCase kKeys[] = {
    {"directory there", R"("InstallDir"="\\Apps\\Live")", true},
    {"directory there, with a backslash", R"("InstallDir"="\\apps\\live\\")", true},
    {"file there", R"("InstallDir"="\\Apps\\file")", true},
    {"root", R"("InstallDir"="\\")", true},
    {"without terminator", "\"InstallDir\"=hex:5c,00,41,00,70,00,70,00,73,00", true},
    {"directory gone", R"("InstallDir"="\\Apps\\Dead")", false},
    {"empty", R"("InstallDir"="")", false},
    {"no bytes", "\"InstallDir\"=hex:", false},
    {"no value", R"("Other"="\\Apps\\Dead")", true},
    {"half a character", "\"InstallDir\"=hex:5c,00,44", true},
    {"too long", "\"InstallDir\"=\"\\\\" + std::string(1030, 'n') + '"', true},
    {"no room for its end",
     "\"InstallDir\"=hex:" +
         [] {
             std::string bytes = "5c,00";
             for (int count = 1; count < 1024; ++count) {
                 bytes += ",6e,00";
             }
             return bytes;
         }(),
     true},
};

TEST(ApplicationKeysTest, DeletesTheKeysOfWhatIsGone) {
    for (const KeyCase& test : kKeys) {
        const ApplyResult result = ApplySilently({{"Apps/Live/", "Apps/file="},
                                                  kQuietTweaks + App("One", test.values),
                                                  OPT_CLEAR_REGISTRY});
        EXPECT_EQ(result.registry.find("Apps\\One") != std::string::npos, test.stays) << test.what;
        EXPECT_EQ(result.boxes, Strings()) << test.what;
        EXPECT_EQ(result.notes, "") << test.what;
    }
}

TEST(ApplicationKeysTest, LeavesTheKeyThatMovesUpForTheNextRun) {
    const std::string dead = R"("InstallDir"="\\Dead")";
    const std::string live = R"("InstallDir"="\\Live")";
    const ApplyInput first{{"Live/"},
                           kQuietTweaks + App("A", dead) + App("B", dead) + App("C", live) +
                               App("D", dead) + App("D\\Sub", live),
                           OPT_CLEAR_REGISTRY};
    const ApplyResult result = ApplySilently(first);
    EXPECT_EQ(result.registry, kQuietTweaks + App("B", dead) + App("C", live));
    EXPECT_EQ(ApplySilently({{"Live/"}, result.registry, OPT_CLEAR_REGISTRY}).registry,
              kQuietTweaks + App("C", live));
}

TEST(ApplicationKeysTest, TellsOfAMissingKey) {
    EXPECT_EQ(ApplySilently({{}, kQuietTweaks, OPT_CLEAR_REGISTRY}).boxes,
              Strings{"[Error] Failed retrieving registry information"});
}

}  // namespace
