#pragma once

#include <cstdint>
#include <cstdio>

#include "core/settings_record.h"

// What LoadSettings returns when there is no mask: no bit of it may be read as an option.
inline constexpr std::int32_t kNoMask = -1;

// Reads "settings.dat", which lies beside the executable, and returns its option mask. Every text
// and position whose bit is set goes into `settings`; a text that the file does not hold whole
// stays null, as does every text behind it, and positions that are missing become 0. The
// interactive run then has everything put into the controls, and `settings` without texts. Returns
// kNoMask when the file cannot be opened, in which case `settings` is left alone and the
// interactive run starts from the first-run default. A file of nothing but set bits gives the same
// number; a silent run takes nothing from it, nor from a file that cannot be read to its end.
std::int32_t LoadSettings(CSettings& settings);

// Captures the controls and replaces "settings.dat" with them; `settings` holds none of the
// captured texts afterwards. When it cannot be written the old file stays, and the host is told in
// a note. Interactive run only.
void SaveSettings(CSettings& settings);

// Opens "settings.dat" for writing; the caller closes it with fclose, which publishes it. Null when
// it cannot be opened.
std::FILE* OpenSettingsForWriting();

// Writes the mask and the texts and positions whose bits are set to `file` and releases those
// texts. A text that is null is written as an empty one, so that the file stays in step with its
// mask.
void WriteSettings(std::FILE* file, std::uint32_t mask, CSettings& settings);
