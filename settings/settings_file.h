#pragma once

#include <cstdint>
#include <cstdio>

#include "core/settings_record.h"
#include "core/wide_text.h"

// What LoadSettings returns if there is no mask. None of its bits stands for an option.
inline constexpr std::int32_t kNoMask = -1;

// How much of "settings.dat" could be read.
enum class SettingsRead {
    Whole,
    Damaged,     // it holds less than its mask asks for, or more
    Unreadable,  // it cannot be read to its end
    NotOpened,   // GetLastError has the reason
};

// Puts the path of "settings.dat", which lies beside the executable, into `path`. False where the
// executable's path is not known or too short.
bool FindSettings(PathText& path);

// Reads the file `path`. Every text and position whose bit is set in `mask` goes into `settings`; a
// text that the file does not hold whole stays null, as does every text after it, and positions
// that are missing become 0. Where the file cannot be opened both are left alone.
SettingsRead ReadSettings(const PathText& path, CSettings& settings, std::uint32_t& mask);

// Reads "settings.dat" as ReadSettings does and returns its option mask. The interactive run then
// copies everything into the controls, which releases the texts. Returns kNoMask if the
// file cannot be opened: `settings` is left alone then, and the interactive run ticks the default
// of the first run. A mask with all bits set has the same value as kNoMask; a silent run takes no
// options from it, nor from a file that cannot be read to its end.
std::int32_t LoadSettings(CSettings& settings);

// Captures the controls and replaces "settings.dat" with them; `settings` has none of the captured
// texts afterwards. If the file cannot be written, an old one stays and the host gets a note.
// Interactive run only.
void SaveSettings(CSettings& settings);

// Opens "settings.dat" for writing; the caller closes it with fclose, which publishes it. Null when
// it cannot be opened.
std::FILE* OpenSettingsForWriting();

// Writes the mask and the texts and positions whose bits are set to `file` and releases those
// texts. A null text is written as an empty one, because the mask announces it.
void WriteSettings(std::FILE* file, std::uint32_t mask, CSettings& settings);
