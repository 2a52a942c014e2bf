#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "core/option_table.h"
#include "platform/diagnostics/failure.h"

namespace platform {

// What is to become of one option.
struct SettingChange {
    const Option* option = nullptr;  // one of AllOptions
    bool isTicked = false;
    std::u16string text{};      // of kind Text, where it is ticked; fits SettingsText
    std::int32_t position = 0;  // of kinds Combo and Slider, where it is ticked
};

// Reads NAME=VALUE. The object of a failure is the word, and what would be right in its place.
Result<SettingChange> ParseSetting(std::string_view word);

// The change as the word that ParseSetting reads, with a text in quotes for the shell. A position
// beyond its list, and a text that is empty or not readable, cannot be read again.
std::string WordOf(const SettingChange& setting);

// What its user should know before it is done; empty where nothing has to be said.
std::string WarningAbout(const SettingChange& change);

}  // namespace platform
