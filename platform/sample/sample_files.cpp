#include "platform/sample/sample_files.h"

#include <algorithm>
#include <string_view>

#include "core/option_table.h"
#include "core/wide_text.h"
#include "platform/text/readable_text.h"
#include "settings/settings_file.h"
#include "shell/help_page.h"

namespace platform {

namespace {

// Parents stand before what is in them.
constexpr const WCHAR* kDirectories[] = {
    TEXT("\\Temp"),
    TEXT("\\Temp\\Unpack"),
    TEXT("\\Temp\\Unpack\\Images"),
    TEXT("\\My Documents"),
    TEXT("\\My Documents\\AvantGo"),
    TEXT("\\My Documents\\AvantGo\\Channels"),
    TEXT("\\My Documents\\Fonts"),
    TEXT("\\My Documents\\Notes"),
    TEXT("\\My Documents\\Personal"),
    TEXT("\\My Documents\\Personal\\Letters"),
    TEXT("\\My Documents\\Temp"),
    TEXT("\\Program Files"),
    TEXT("\\Program Files\\Fennelbright"),
    TEXT("\\Program Files\\Reader"),
    TEXT("\\Program Files\\Reader\\Cache"),
    TEXT("\\Storage Card"),
    TEXT("\\Storage Card\\AvantGo"),
    TEXT("\\Storage Card\\Downloads"),
    TEXT("\\Storage Card\\Downloads\\Partial"),
    TEXT("\\Storage Card\\Favorites"),
    TEXT("\\Storage Card\\Fonts"),
    TEXT("\\Storage Card\\Internet Cache"),
    TEXT("\\Storage Card\\Personal"),
    TEXT("\\Windows"),
    TEXT("\\Windows\\Favorites"),
    TEXT("\\Windows\\Favorites\\Travel"),
    TEXT("\\Windows\\Profiles"),
    TEXT("\\Windows\\Profiles\\guest"),
    TEXT("\\Windows\\Profiles\\guest\\History"),
    TEXT("\\Windows\\Profiles\\guest\\History\\Monday"),
    TEXT("\\Windows\\Profiles\\guest\\Temporary Internet Files"),
    TEXT("\\Windows\\Profiles\\guest\\Temporary Internet Files\\Content"),
    TEXT("\\Windows\\Start Menu"),
    TEXT("\\Windows\\Start Menu\\Programs"),
    TEXT("\\Windows\\Start Menu\\Programs\\Games"),
    TEXT("\\Windows\\StartUp"),
    TEXT("\\Windows\\Temp"),
    TEXT("\\Windows\\Temp\\Print"),
};

struct SampleFile {
    const WCHAR* path;
    std::size_t size;  // bytes
};

constexpr SampleFile kFiles[] = {
    {TEXT("\\Temp\\install.log"), 4210},
    {TEXT("\\Temp\\~dl3f2.tmp"), 65536},
    {TEXT("\\Temp\\Unpack\\setup.cab"), 20480},
    {TEXT("\\Temp\\Unpack\\Images\\splash.bmp"), 15478},
    {TEXT("\\My Documents\\AvantGo\\channels.db"), 14000},
    {TEXT("\\My Documents\\AvantGo\\Channels\\weather.pdb"), 6200},
    {TEXT("\\My Documents\\Fonts\\garden.ttf"), 32000},
    {TEXT("\\My Documents\\Letter.txt"), 1180},
    {TEXT("\\My Documents\\Notes\\Shopping.txt"), 240},
    {TEXT("\\My Documents\\Personal\\Budget.pxl"), 5100},
    {TEXT("\\My Documents\\Personal\\Letters\\Landlord.psw"), 2048},
    {TEXT("\\My Documents\\Temp\\draft.tmp"), 3072},
    {TEXT("\\Program Files\\Fennelbright\\Fennelbright.exe"), 61440},
    {TEXT("\\Program Files\\Reader\\Reader.exe"), 40960},
    {TEXT("\\Program Files\\Reader\\Cache\\page1.dat"), 8192},
    {TEXT("\\Program Files\\Reader\\Cache\\page2.dat"), 8192},
    {TEXT("\\Storage Card\\Downloads\\Map of the county.pdf"), 30000},
    {TEXT("\\Storage Card\\Downloads\\Partial\\podcast.part"), 48000},
    {TEXT("\\Windows\\calc.exe"), 18432},
    {TEXT("\\Windows\\Favorites\\News.url"), 61},
    {TEXT("\\Windows\\Favorites\\Travel\\Trains.url"), 58},
    {TEXT("\\Windows\\iexplore.exe"), 22528},
    {TEXT("\\Windows\\Profiles\\guest\\History\\index.dat"), 16384},
    {TEXT("\\Windows\\Profiles\\guest\\History\\Monday\\index.dat"), 16384},
    {TEXT("\\Windows\\Profiles\\guest\\Temporary Internet Files\\index.dat"), 32768},
    {TEXT("\\Windows\\Profiles\\guest\\Temporary Internet Files\\Content\\logo[1].gif"), 2310},
    {TEXT("\\Windows\\Start Menu\\Programs\\Read me.txt"), 320},
    {TEXT("\\Windows\\Temp\\wce0041.tmp"), 512},
    {TEXT("\\Windows\\Temp\\Print\\spool.prn"), 9000},
    {TEXT("\\Windows\\welcome.wav"), 11025},
};

struct SampleShortcut {
    const WCHAR* path;
    const WCHAR* target;
};

constexpr SampleShortcut kShortcuts[] = {
    // These lead to what is there.
    {TEXT("\\Windows\\Start Menu\\Internet Explorer.lnk"), TEXT("\\Windows\\iexplore.exe -home")},
    {TEXT("\\Windows\\Start Menu\\Programs\\Calculator.lnk"), TEXT("\\Windows\\calc.exe")},
    {TEXT("\\Windows\\Start Menu\\Programs\\Reader.lnk"),
     TEXT("\"\\Program Files\\Reader\\Reader.exe\"")},
    {TEXT("\\Windows\\Start Menu\\Programs\\Map.lnk"),
     TEXT("\"\\Program Files\\Reader\\Reader.exe\" \\Storage Card\\Downloads\\Map of the "
          "county.pdf")},
    {TEXT("\\Windows\\Start Menu\\Programs\\My Documents.lnk"), TEXT("\\My Documents\\")},
    {TEXT("\\Windows\\Start Menu\\Programs\\Pictures.lnk"), TEXT(":MSPIMG")},
    {TEXT("\\Windows\\Start Menu\\Programs\\Whole device.lnk"), TEXT("\\")},
    {TEXT("\\Windows\\StartUp\\Calculator.lnk"), TEXT("\\Windows\\calc.exe")},
    {TEXT("\\Windows\\StartUp\\Reader.lnk"),
     TEXT("\"\\Program Files\\Reader\\Reader.exe\" -hidden")},
    // And these do not.
    {TEXT("\\Windows\\Start Menu\\Programs\\Games\\Harbour Chess.lnk"),
     TEXT("\"\\Program Files\\Harbour Chess\\Chess.exe\"")},
    {TEXT("\\Windows\\Start Menu\\Programs\\Games\\Chess by mail.lnk"),
     TEXT("\"\\Program Files\\Harbour Chess\\Chess.exe\" /mail")},
    {TEXT("\\Windows\\Start Menu\\Programs\\County Atlas.lnk"),
     TEXT("\\Storage Card\\County Atlas\\Atlas.exe")},
    {TEXT("\\Windows\\Start Menu\\Programs\\Profile.lnk"), TEXT("\\Windows\\autoprof -s Silent")},
};

struct SampleText {
    std::uint32_t option;
    const WCHAR* text;
};

constexpr SampleText kTexts[] = {
    {OPT_CLEAN_USER1, TEXT("\\Program Files\\Reader\\Cache\\")},
    {OPT_CLEAN_USER2, TEXT("\\Storage Card\\Downloads\\Partial\\")},
    {OPT_MOVE_IE_CACHE, TEXT("\\Storage Card\\Internet Cache\\")},
    {OPT_MOVE_AVANTGO, TEXT("\\Storage Card\\AvantGo\\")},
    {OPT_MOVE_FAVORITES, TEXT("\\Storage Card\\Favorites\\")},
    {OPT_MOVE_FONTS, TEXT("\\Storage Card\\Fonts\\")},
    {OPT_MOVE_MYDOCS, TEXT("\\Storage Card\\Personal\\")},
};

// Everything but the searches, which only a user looking on can make use of.
constexpr std::uint32_t kTicked = 0xFFFFFF & ~(OPT_SEARCH_TMP | OPT_SEARCH_LOG | OPT_SEARCH_BAK);

bool WriteFile(DeviceStore& store, const SampleFile& sample) {
    std::FILE* const file = store._wfopen(sample.path, TEXT("wb"));
    if (file == nullptr) {
        return false;
    }
    constexpr std::string_view line = "This file belongs to a sample device.\r\n";
    for (std::size_t left = sample.size; left > 0;) {
        const std::size_t part = std::min(left, line.size());
        std::fwrite(line.data(), 1, part, file);
        left -= part;
    }
    return std::fclose(file) == 0;
}

bool WriteHelpPage(DeviceStore& store) {
    std::FILE* const file = store._wfopen(kHelpPagePath, TEXT("wb"));
    if (file == nullptr) {
        return false;
    }
    std::fwrite(kHelpPage.data(), 1, kHelpPage.size(), file);
    return std::fclose(file) == 0;
}

void PutTexts(CSettings& settings) {
    for (const Option& option : AllOptions()) {
        for (const SampleText& sample : kTexts) {
            if (option.bit == sample.option) {
                SettingsText text = NewSettingsText();
                std::copy_n(sample.text, wcslen(sample.text), text.get());
                settings.*option.text = std::move(text);
            }
        }
    }
}

bool WriteSampleSettings() {
    CSettings settings;
    PutTexts(settings);
    settings.FontCacheIndex = 1;
    std::FILE* const file = OpenSettingsForWriting();
    if (file == nullptr) {
        return false;
    }
    WriteSettings(file, kTicked, settings);
    return std::fclose(file) == 0;
}

Status MadeIf(bool made, const DeviceStore& store, const WCHAR* path) {
    return made ? Status() : FailOf(store.LastFailure(), ReadableText(path));
}

template <typename Rows, typename Make>
Status MakeAll(const Rows& rows, Make make) {
    for (const auto& row : rows) {
        if (Status made = make(row); !made) {
            return made;
        }
    }
    return {};
}

}  // namespace

Status FillSampleDevice(DeviceStore& store) {
    Status made = MakeAll(kDirectories, [&store](const WCHAR* path) {
        return MadeIf(store.CreateDirectoryW(path, nullptr) != 0, store, path);
    });
    made = made ? MakeAll(kFiles,
                          [&store](const SampleFile& file) {
                              return MadeIf(WriteFile(store, file), store, file.path);
                          })
                : made;
    made = made ? MakeAll(kShortcuts,
                          [&store](const SampleShortcut& shortcut) {
                              return MadeIf(
                                  store.SHCreateShortcut(shortcut.path, shortcut.target) != 0,
                                  store, shortcut.path);
                          })
                : made;
    made = made ? MadeIf(WriteHelpPage(store), store, kHelpPagePath) : made;
    return made ? MadeIf(WriteSampleSettings(), store, TEXT("settings.dat")) : made;
}

}  // namespace platform
