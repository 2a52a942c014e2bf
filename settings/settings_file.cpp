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

bool FindSettingsOrSay(PathText& path) {
    if (!FindSettings(path)) {
        MessageBoxW(nullptr, TEXT("Failed retrieving application directory"), TEXT("Error!!!"),
                    MB_OK);
        return false;
    }
    return true;
}

std::optional<std::uint32_t> ReadNumber(std::FILE* file) {
    std::array<unsigned char, 4> bytes{};
    if (std::fread(bytes.data(), bytes.size(), 1, file) != 1) {
        return std::nullopt;
    }
    return static_cast<std::uint32_t>(bytes[0]) | static_cast<std::uint32_t>(bytes[1]) << 8 |
           static_cast<std::uint32_t>(bytes[2]) << 16 | static_cast<std::uint32_t>(bytes[3]) << 24;
}

// The values after the mask, one after the other. After a damaged one the next could begin
// anywhere, so none is read.
class Items {
  public:
    explicit Items(std::FILE* file) : file_(file) {}

    bool areWhole() const { return inStep_ && !isCut_; }

    // Null if the file does not hold the whole text: a cut path names another directory.
    SettingsText NextText() {
        SettingsText text = inStep_ ? ReadText() : nullptr;
        inStep_ = text != nullptr;
        return text;
    }

    std::int32_t NextPosition() {
        const auto number = inStep_ ? ReadNumber(file_) : std::optional<std::uint32_t>();
        inStep_ = number.has_value();
        return static_cast<std::int32_t>(number.value_or(0));
    }

  private:
    SettingsText ReadText() {
        const std::optional<std::uint32_t> count = ReadNumber(file_);
        if (!count || *count >= kTextCapacity) {
            return nullptr;
        }
        std::array<unsigned char, 2 * kTextCapacity> bytes{};
        if (std::fread(bytes.data(), 2, *count, file_) != *count) {
            return nullptr;
        }
        SettingsText text = NewSettingsText();
        for (std::size_t index = 0; index < *count; ++index) {
            text[index] = static_cast<WCHAR>(bytes[2 * index] | bytes[2 * index + 1] << 8);
        }
        isCut_ = isCut_ || wcslen(text.get()) != *count;
        return text;
    }

    std::FILE* file_;
    bool inStep_ = true;
    bool isCut_ = false;  // a text has its end inside of it
};

void WriteNumber(std::FILE* file, std::uint32_t number) {
    const std::array<unsigned char, 4> bytes = {
        static_cast<unsigned char>(number), static_cast<unsigned char>(number >> 8),
        static_cast<unsigned char>(number >> 16), static_cast<unsigned char>(number >> 24)};
    std::fwrite(bytes.data(), bytes.size(), 1, file);
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

// Returns whether the file holds exactly what the mask asks for, or at least begins with it.
bool ReadValues(std::FILE* file, std::uint32_t mask, CSettings& settings) {
    Items items{file};
    for (const Option& option : AllOptions()) {
        if (option.text != nullptr && (mask & option.bit) != 0) {
            settings.*option.text = items.NextText();
        }
    }
    for (const Option& option : AllOptions()) {
        if (option.position != nullptr && (mask & option.bit) != 0) {
            settings.*option.position = items.NextPosition();
        }
    }
    return items.areWhole();
}

void NoteNotSaved() {
    PathText path{};
    NoteNotStored(FindSettings(path) ? path.data() : kSettingsName);
}

}  // namespace

bool FindSettings(PathText& path) {
    PathText directory{};
    const DWORD length = GetModuleFileNameW(nullptr, directory.data(), kTextCapacity);
    if (length < kExecutableNameLength) {
        return false;
    }
    // Its path less the length of the name it is installed under.
    directory[length - kExecutableNameLength] = 0;
    return FormatText(path, TEXT("%s%s"), {directory.data(), kSettingsName});
}

SettingsRead ReadSettings(const PathText& path, CSettings& settings, std::uint32_t& mask) {
    std::FILE* const file = _wfopen(path.data(), TEXT("rb"));
    if (file == nullptr) {
        return SettingsRead::NotOpened;
    }
    const std::optional<std::uint32_t> number = ReadNumber(file);
    mask = number.value_or(0);
    const bool hasAll = ReadValues(file, mask, settings) && number;
    const bool isRead = std::ferror(file) == 0;
    const bool isWhole = hasAll && std::fgetc(file) == EOF;
    std::fclose(file);
    if (!isRead) {
        return SettingsRead::Unreadable;
    }
    return isWhole ? SettingsRead::Whole : SettingsRead::Damaged;
}

std::int32_t LoadSettings(CSettings& settings) {
    PathText path{};
    std::uint32_t mask = 0;
    const bool isFound = FindSettingsOrSay(path);
    const SettingsRead read =
        isFound ? ReadSettings(path, settings, mask) : SettingsRead::NotOpened;
    if (read == SettingsRead::NotOpened) {
        // In an unattended run no user sees that nothing is ticked.
        if (g_Silent && isFound) {
            NoteNoSettings(path.data());
        }
        if (!g_Silent) {
            TickFirstRunDefault();
        }
        return kNoMask;
    }
    const auto result = static_cast<std::int32_t>(mask);
    // An unattended run would take that mask for the failure that it also stands for.
    const bool isRefused = g_Silent && result == kNoMask;
    if (read == SettingsRead::Unreadable) {
        NoteSettingsNotRead(path.data());
    } else if (read == SettingsRead::Damaged || isRefused) {
        NoteSettingsDamaged(path.data());
    }
    if (!g_Silent) {
        RestoreSettings(settings, mask);
    }
    // Some steps always run and do the opposite for an option that is not ticked, so a silent run
    // must not go by a part of the mask.
    return read != SettingsRead::Unreadable || !g_Silent ? result : kNoMask;
}

void SaveSettings(CSettings& settings) {
    std::FILE* const file = OpenSettingsForWriting();
    if (file == nullptr) {
        NoteNotSaved();
        return;
    }
    WriteSettings(file, CaptureSettings(settings), settings);
    if (std::fclose(file) != 0) {
        NoteNotSaved();
    }
}

std::FILE* OpenSettingsForWriting() {
    PathText path{};
    return FindSettingsOrSay(path) ? _wfopen(path.data(), TEXT("wb")) : nullptr;
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
