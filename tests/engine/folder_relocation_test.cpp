#include "engine/folder_relocation.h"

#include "core/option_table.h"
#include "tests/support/apply_device.h"
#include "tests/support/files_alone.h"

namespace {

struct Folder {
    std::uint32_t option;
    const char* key;
    const char* value;
    const char* keyMissing;
    const char* valueMissing;
};

constexpr char kShellFolders[] = "[HKEY_LOCAL_MACHINE\\Explorer\\Shell Folders]\n";

constexpr Folder kFolders[] = {
    {OPT_MOVE_AVANTGO, "[HKEY_CURRENT_USER\\Software\\AvantGo]\n", "DatabaseLocation",
     "[Error] Unable to locate AvantGo cache", "[Error] Unable to locate AvantGo cache directory"},
    {OPT_MOVE_FAVORITES, kShellFolders, "Favorites", "[Error] Unable to locate Favorites",
     "[Error] Unable to locate Favorties directory"},
    {OPT_MOVE_FONTS, kShellFolders, "Fonts", "[Error] Unable to locate Fonts",
     "[Error] Unable to locate Fonts directory"},
    {OPT_MOVE_MYDOCS, kShellFolders, "My Documents", "[Error] Unable to locate My Documents",
     "[Error] Unable to locate My Documents directory"},
};

std::string Registry(const Folder& folder, const std::string& data) {
    return std::string(kQuietTweaks) + folder.key + "\"" + folder.value + "\"=" + data + "\n";
}

const Entries kFiles = Words("Old/a=1 Old/Sub/b=2 New/");
const Entries kUnmoved = Words("New/ Old/ Old/Sub/ Old/Sub/b=2 Old/a=1");
const Entries kMoved = Words("New/ New/Sub/ New/Sub/b=2 New/a=1 Old/");

TEST(FolderRelocationTest, ReportsMissingKeysAndValues) {
    for (const Folder& folder : kFolders) {
        for (const std::string key : {"", folder.key}) {
            const std::string registry = kQuietTweaks + key;
            const ApplyResult result = ApplySilently({kFiles, registry, folder.option, u"\\New\\"});
            EXPECT_EQ(result.boxes, key.empty() ? (Entries{folder.keyMissing, folder.valueMissing})
                                                : Entries{folder.valueMissing});
            EXPECT_EQ(result.files, kUnmoved);
            EXPECT_EQ(result.registry, registry);
        }
    }
}

TEST(FolderRelocationTest, MovesWhatIsThereAndWritesTheNewPlace) {
    const struct {
        const char* what;
        const char* data;    // of the value, before
        const WCHAR* typed;  // null: the settings hold none
        const char* after;
        Entries files;
        bool noted = false;
    } cases[] = {
        {"moved", R"("\\Old")", u"\\New\\", R"("\\New\\")", kMoved},
        {"old one with a backslash", R"("\\old\\")", u"\\New\\", R"("\\New\\")", kMoved},
        {"typed without a backslash", R"("\\Old")", u"\\new", R"("\\new")", kMoved},
        {"no terminator", "hex:5c,00,4f,00,6c,00,64,00", u"\\New\\", R"("\\New\\")", kMoved},
        {"empty destination", R"("\\Old")", u"", R"("\\Old")", kUnmoved},
        {"no destination", R"("\\Old")", nullptr, R"("\\Old")", kUnmoved},
        {"missing destination", R"("\\Old")", u"\\None\\", R"("\\None\\")", kUnmoved},
        {"missing source", R"("\\None")", u"\\New\\", R"("\\New\\")", kUnmoved},
        {"root", R"("\\")", u"\\New\\", R"("\\New\\")", kUnmoved, true},
        {"relative", R"("Old")", u"\\New\\", R"("\\New\\")", kMoved},
        {"pattern", R"("\\Ol?")", u"\\New\\", R"("\\New\\")", kUnmoved},
    };
    for (const Folder& folder : kFolders) {
        for (const auto& move : cases) {
            SCOPED_TRACE(std::string(folder.value) + ", " + move.what);
            const ApplyResult result =
                ApplySilently({kFiles, Registry(folder, move.data), folder.option, move.typed});
            EXPECT_EQ(result.files, move.files);
            EXPECT_EQ(result.registry, Registry(folder, move.after));
            EXPECT_EQ(result.notes.empty(), !move.noted) << result.notes;
            EXPECT_EQ(result.boxes, Entries());
            EXPECT_EQ(result.bytesCleaned, 0U);
        }
    }
}

// Lets nothing move from the n-th time on, as when the registry cannot be stored.
struct ClosingGuard : platform::ChangeGuard {
    platform::Status BeforeChange() override { return {}; }
    platform::Status BeforeMove() override {
        return --open > 0 ? platform::Status()
                          : platform::FailBecause("move", "no", ERROR_NO_SYSTEM_RESOURCES);
    }
    int open = 0;
};

TEST(FolderRelocationTest, StopsAndWritesNoNewPlaceWhenNothingMayMove) {
    for (const int closing : {1, 2, 3}) {
        const TemporaryDevice device(kFiles);
        WriteFile(device.registry(), Registry(kFolders[1], R"("\\Old")"));
        ClosingGuard guard;
        guard.open = closing;
        platform::HostFiles files(device.OpenFiles(), &guard);
        const auto registry = device.OpenRegistry();
        FilesAlone rest{platform::Descriptor()};
        platform::ForwardingStore store(files, *registry, rest);
        const platform::StoreInUse inUse(store);
        CSettings settings;
        settings.FavoritesDir = NewSettingsText();
        FormatText({settings.FavoritesDir.get(), 9}, u"\\New\\", {});
        ApplyRun run{kFolders[1].option, settings};
        RelocateFolder(run, kFolders[1].option);
        EXPECT_EQ(guard.open, 0) << closing;
        EXPECT_EQ(store.ChangesOfRegistry().made, 0U);
    }
}

}  // namespace
