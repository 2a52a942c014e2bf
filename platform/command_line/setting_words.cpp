#include "platform/command_line/setting_words.h"

#include <algorithm>
#include <optional>

#include "core/wide_text.h"
#include "platform/diagnostics/cleaning_warnings.h"
#include "platform/text/device_paths.h"
#include "platform/text/name_translation.h"
#include "platform/text/readable_text.h"
#include "platform/text/text_encoding.h"

namespace platform {

namespace {

constexpr const char* kUnderstand = "understand the command line";
constexpr std::string_view kOn = "on";
constexpr std::string_view kOff = "off";

const Option* FindOption(std::string_view name) {
    const auto options = AllOptions();
    const auto found = std::ranges::find(options, name, &Option::name);
    return found == options.end() ? nullptr : &*found;
}

bool IsDirectory(const Option& option) {
    return option.kind == OptionKind::Text && option.bit != OPT_SEARCH_CUSTOM;
}

// Whether what is in the directory is deleted.
bool IsCleaned(const Option& option) {
    return option.bit == OPT_CLEAN_USER1 || option.bit == OPT_CLEAN_USER2;
}

// For a sentence.
std::string ValuesOf(const Option& option) {
    std::string values = option.kind == OptionKind::Flag ? "on"
                         : IsDirectory(option)           ? "a directory such as \\Temp\\"
                         : option.words == nullptr       ? "an extension such as old"
                                                         : "";
    if (option.words != nullptr) {
        for (const char* const word : *option.words) {
            values += (values.empty() ? "" : ", ") + std::string(word);
        }
    }
    return values + " or off";
}

// Whether every name in it can be that of an entry; one with "/" in it, or a pattern, is none.
bool CanBeDirectory(std::u16string_view path) {
    const auto components = ComponentsOf(path);
    return path.starts_with(u'\\') &&
           std::ranges::all_of(components, [](std::u16string_view component) {
               HostName name;
               return HostNameOf(component, name);
           });
}

bool TakeText(std::string_view value, SettingChange& change) {
    change.text = WideText(value).value_or(std::u16string());
    return !change.text.empty() && change.text.size() < kTextCapacity &&
           (!IsDirectory(*change.option) || CanBeDirectory(change.text));
}

bool TakePosition(std::string_view value, SettingChange& change) {
    const PositionWords& words = *change.option->words;
    const auto found = std::ranges::find(words, value);
    change.position = static_cast<std::int32_t>(found - words.begin());
    return found != words.end();
}

bool TakeValue(std::string_view value, SettingChange& change) {
    change.isTicked = value != kOff;
    if (!change.isTicked) {
        return true;
    }
    switch (change.option->kind) {
        case OptionKind::Flag:
            return value == kOn;
        case OptionKind::Text:
            return TakeText(value, change);
        case OptionKind::Combo:
        case OptionKind::Slider:
            break;
    }
    return TakePosition(value, change);
}

// The words of a shell that stand for the text.
std::string InQuotes(std::u16string_view text) {
    std::string quoted = "'";
    for (const char byte : ReadableText(text)) {
        quoted += byte == '\'' ? std::string("'\\''") : std::string(1, byte);
    }
    return quoted + '\'';
}

std::string ValueOf(const SettingChange& setting) {
    if (!setting.isTicked) {
        return std::string(kOff);
    }
    switch (setting.option->kind) {
        case OptionKind::Flag:
            return std::string(kOn);
        case OptionKind::Text:
            return InQuotes(setting.text);
        case OptionKind::Combo:
        case OptionKind::Slider:
            break;
    }
    const auto position = static_cast<std::uint32_t>(setting.position);
    const PositionWords& words = *setting.option->words;
    return position < words.size() ? words[position] : std::to_string(setting.position);
}

}  // namespace

Result<SettingChange> ParseSetting(std::string_view word) {
    const std::size_t sign = word.find('=');
    SettingChange change{.option = FindOption(word.substr(0, sign))};
    const std::string quoted = "--set \"" + ReadableBytes(word) + '"';
    if (change.option == nullptr) {
        return FailOf({kUnderstand, {}, 0, "there is no such option; --show-settings lists them"},
                      quoted);
    }
    const bool hasValue = sign != std::string_view::npos;
    if (!hasValue || !TakeValue(word.substr(sign + 1), change)) {
        return FailOf({kUnderstand, {}, 0, hasValue ? "it cannot have that value" : "no =VALUE"},
                      quoted + ", which takes " + ValuesOf(*change.option));
    }
    return change;
}

std::string WordOf(const SettingChange& setting) {
    return std::string(setting.option->name) + '=' + ValueOf(setting);
}

std::string WarningAbout(const SettingChange& change) {
    return change.isTicked && IsCleaned(*change.option)
               ? WarningAboutCleaning(change.option->bit, change.text)
               : std::string();
}

}  // namespace platform
