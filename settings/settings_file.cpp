#include "settings/settings_file.h"

#include <array>
#include <optional>

#include "core/application.h"
#include "core/file_operations.h"
#include "core/host_notes.h"
#include "core/option_table.h"
#include "core/wide_text.h"
#include "core/window_operations.h"
#include "settings/control_settings.h"

namespace {

constexpr const WCHAR* kSettingsName = TEXT("settings.dat");
constexpr std::size_t kExecutableNameLength = 16;  // "Fennelbright.exe"

// The executable's directory is its path less the length of the name it is installed under.
bool BuildSettingsPath(PathText& path) {
    PathText directory{};
    const DWORD length = GetModuleFileNameW(nullptr, directory.data(), kTextCapacity);
    if (length < kExecutableNameLength) {
        MessageBoxW(nullptr, TEXT("Failed retrieving application directory"), TEXT("Error!!!"),
                    MB_OK);
        return false;
    }
    directory[length - kExecutableNameLength] = 0;
    return FormatText(path, TEXT("%s%s"), {directory.data(), kSettingsName});
}

// In an unattended run no user sees that nothing is ticked.
std::FILE* OpenSettingsForReading(PathText& path) {
    if (!BuildSettingsPath(path)) {
        return nullptr;
    }
    std::FILE* const file = _wfopen(path.data(), TEXT("rb"));
    if (file == nullptr && g_Silent) {
        NoteNoSettings(path.data());
    }
    return file;
}

std::optional<std::uint32_t> ReadNumber(std::FILE* file) {
    std::array<unsigned char, 4> bytes{};
    if (std::fread(bytes.data(), bytes.size(), 1, file) != 1) {
        return std::nullopt;
    }
    return static_cast<std::uint32_t>(bytes[0]) | static_cast<std::uint32_t>(bytes[1]) << 8 |
           static_cast<std::uint32_t>(bytes[2]) << 16 | static_cast<std::uint32_t>(bytes[3]) << 24;
}

void WriteNumber(std::FILE* file, std::uint32_t number) {
    const std::array<unsigned char, 4> bytes = {
        static_cast<unsigned char>(number), static_cast<unsigned char>(number >> 8),
        static_cast<unsigned char>(number >> 16), static_cast<unsigned char>(number >> 24)};
    std::fwrite(bytes.data(), bytes.size(), 1, file);
}

// Null if the file does not hold the whole text: a cut path names another directory.
SettingsText ReadText(std::FILE* file) {
    const std::optional<std::uint32_t> count = ReadNumber(file);
    if (!count || *count >= kTextCapacity) {
        return nullptr;
    }
    std::array<unsigned char, 2 * kTextCapacity> bytes{};
    if (std::fread(bytes.data(), 2, *count, file) != *count) {
        return nullptr;
    }
    SettingsText text = NewSettingsText();
    for (std::size_t index = 0; index < *count; ++index) {
        text[index] = static_cast<WCHAR>(bytes[2 * index] | bytes[2 * index + 1] << 8);
    }
    return text;
}

void WriteText(std::FILE* file, const WCHAR* text) {
    const std::size_t count = wcslen(text);
    WriteNumber(file, static_cast<std::uint32_t>(count));
    for (std::size_t index = 0; index < count; ++index) {
        const std::array<unsigned char, 2> bytes = {static_cast<unsigned char>(text[index]),
                                                    static_cast<unsigned char>(text[index] >> 8)};
        std::fwrite(bytes.data(), bytes.size(), 1, file);
    }
}

// After a damaged text the next item could begin anywhere, so nothing after it is read. Returns
// whether all texts were whole.
bool ReadTexts(std::FILE* file, std::uint32_t mask, CSettings& settings) {
    bool inStep = true;
    for (const Option& option : AllOptions()) {
        if (option.text != nullptr && (mask & option.bit) != 0) {
            SettingsText& text = settings.*option.text;
            text = inStep ? ReadText(file) : nullptr;
            inStep = text != nullptr;
        }
    }
    return inStep;
}

// Returns whether all positions were there.
bool ReadPositions(std::FILE* file, std::uint32_t mask, CSettings& settings, bool inStep) {
    for (const Option& option : AllOptions()) {
        if (option.position != nullptr && (mask & option.bit) != 0) {
            const std::optional<std::uint32_t> number =
                inStep ? ReadNumber(file) : std::optional<std::uint32_t>();
            inStep = number.has_value();
            settings.*option.position = static_cast<std::int32_t>(number.value_or(0));
        }
    }
    return inStep;
}

// Returns whether the file holds everything that the mask asks for.
bool ReadValues(std::FILE* file, std::uint32_t mask, CSettings& settings) {
    const bool hasTexts = ReadTexts(file, mask, settings);
    return ReadPositions(file, mask, settings, hasTexts);
}

}  // namespace

std::int32_t LoadSettings(CSettings& settings) {
    PathText path{};
    std::FILE* const file = OpenSettingsForReading(path);
    if (file == nullptr) {
        if (!g_Silent) {
            TickFirstRunDefault();
        }
        return kNoMask;
    }
    const std::optional<std::uint32_t> number = ReadNumber(file);
    const std::uint32_t mask = number.value_or(0);
    const auto result = static_cast<std::int32_t>(mask);
    // An unattended run would take that mask for the failure that it also stands for.
    const bool takesValues = result != kNoMask || !g_Silent;
    const bool hasAll = takesValues && ReadValues(file, mask, settings) && number;
    const bool isRead = std::ferror(file) == 0;
    const bool isWhole = hasAll && std::fgetc(file) == EOF;
    std::fclose(file);
    if (!isRead) {
        NoteSettingsNotRead(path.data());
    } else if (!isWhole) {
        NoteSettingsDamaged(path.data());
    }
    if (!g_Silent) {
        RestoreSettings(settings, mask);
    }
    // Some steps always run and do the opposite for an option that is not ticked, so a silent run
    // must not go by a part of the mask.
    return isRead || !g_Silent ? result : kNoMask;
}

void SaveSettings(CSettings& settings) {
    std::FILE* const file = OpenSettingsForWriting();
    if (file == nullptr) {
        NoteNotStored(kSettingsName);
        return;
    }
    WriteSettings(file, CaptureSettings(settings), settings);
    if (std::fclose(file) != 0) {
        NoteNotStored(kSettingsName);
    }
}

std::FILE* OpenSettingsForWriting() {
    PathText path{};
    return BuildSettingsPath(path) ? _wfopen(path.data(), TEXT("wb")) : nullptr;
}

void WriteSettings(std::FILE* file, std::uint32_t mask, CSettings& settings) {
    WriteNumber(file, mask);
    for (const Option& option : AllOptions()) {
        if (option.text != nullptr && (mask & option.bit) != 0) {
            SettingsText& text = settings.*option.text;
            WriteText(file, text != nullptr ? text.get() : TEXT(""));
            text.reset();
        }
    }
    for (const Option& option : AllOptions()) {
        if (option.position != nullptr && (mask & option.bit) != 0) {
            WriteNumber(file, static_cast<std::uint32_t>(settings.*option.position));
        }
    }
}
