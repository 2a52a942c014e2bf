#include "core/settings_record.h"

#include "core/wide_text.h"

SettingsText NewSettingsText() {
    return std::make_unique<WCHAR[]>(kTextCapacity);
}
