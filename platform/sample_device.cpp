#include "platform/sample_device.h"

#include <algorithm>
#include <string_view>

#include "core/options.h"
#include "core/wide_text.h"
#include "platform/host_text.h"
#include "settings/settings_file.h"

namespace platform {

namespace {

// Parents stand before what is in them.
constexpr const WCHAR* kDirectories[] = {
    TEXT("\\Temp"),
    TEXT("\\Temp\\Unpack"),
    TEXT("\\Temp\\Unpack\\Images"),
    TEXT("\\My Documents"),
    TEXT("\\My Documents\\Notes"),
    TEXT("\\My Documents\\Temp"),
    TEXT("\\Program Files"),
    TEXT("\\Program Files\\Fennelbright"),
    TEXT("\\Program Files\\Reader"),
    TEXT("\\Program Files\\Reader\\Cache"),
    TEXT("\\Storage Card"),
    TEXT("\\Storage Card\\Downloads"),
    TEXT("\\Storage Card\\Downloads\\Partial"),
    TEXT("\\Windows"),
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
    {TEXT("\\My Documents\\Letter.txt"), 1180},
    {TEXT("\\My Documents\\Notes\\Shopping.txt"), 240},
    {TEXT("\\My Documents\\Temp\\draft.tmp"), 3072},
    {TEXT("\\Program Files\\Fennelbright\\Fennelbright.exe"), 61440},
    {TEXT("\\Program Files\\Reader\\Reader.exe"), 40960},
    {TEXT("\\Program Files\\Reader\\Cache\\page1.dat"), 8192},
    {TEXT("\\Program Files\\Reader\\Cache\\page2.dat"), 8192},
    {TEXT("\\Storage Card\\Downloads\\Map of the county.pdf"), 30000},
    {TEXT("\\Storage Card\\Downloads\\Partial\\podcast.part"), 48000},
    {TEXT("\\Windows\\Temp\\wce0041.tmp"), 512},
    {TEXT("\\Windows\\Temp\\Print\\spool.prn"), 9000},
    {TEXT("\\Windows\\welcome.wav"), 11025},
};

struct SampleText {
    std::uint32_t option;
    const WCHAR* text;
};

constexpr SampleText kTexts[] = {
    {OPT_CLEAN_USER1, TEXT("\\Program Files\\Reader\\Cache\\")},
    {OPT_CLEAN_USER2, TEXT("\\Storage Card\\Downloads\\Partial\\")},
};

constexpr std::uint32_t kTicked = OPT_CLEAN_USER1 | OPT_CLEAN_USER2 | OPT_CLEAN_ROOT_TEMP |
                                  OPT_CLEAN_WINDOWS_TEMP | OPT_CLEAN_MYDOCS_TEMP;

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
    std::FILE* const file = OpenSettingsForWriting();
    if (file == nullptr) {
        return false;
    }
    WriteSettings(file, kTicked, settings);
    return std::fclose(file) == 0;
}

}  // namespace

std::string FillSampleDevice(DeviceStore& store) {
    for (const WCHAR* const directory : kDirectories) {
        if (store.CreateDirectoryW(directory, nullptr) == 0) {
            return ReadableText(directory);
        }
    }
    for (const SampleFile& file : kFiles) {
        if (!WriteFile(store, file)) {
            return ReadableText(file.path);
        }
    }
    return WriteSampleSettings() ? "" : "settings.dat";
}

}  // namespace platform
