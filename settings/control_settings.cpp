#include "settings/control_settings.h"

#include "core/application.h"
#include "core/option_table.h"
#include "core/wide_text.h"
#include "core/window_operations.h"
#include "screens/screens.h"

namespace {

constexpr LRESULT kTicked = 1;
constexpr std::uint32_t kFirstRunDefault = OPT_NO_WINDOW_ANIMATION;

HWND BoxOf(const Option& option) {
    return g_Screens->GetScreenItems(option.screen).ItemAt(option.item);
}

HWND ValueControlOf(const Option& option) {
    return g_Screens->GetScreenItems(option.screen).ItemAt(option.valueItem);
}

void Tick(const Option& option) {
    SendMessageW(BoxOf(option), BM_SETCHECK, kTicked, 0);
}

void CaptureText(const Option& option, SettingsText& text) {
    text = NewSettingsText();
    SendMessageW(ValueControlOf(option), WM_GETTEXT, kTextCapacity,
                 reinterpret_cast<LPARAM>(text.get()));
}

void RestoreText(const Option& option, SettingsText& text) {
    if (text != nullptr) {
        SendMessageW(ValueControlOf(option), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text.get()));
        text.reset();
    }
}

void CaptureValue(const Option& option, CSettings& settings) {
    switch (option.kind) {
        case OptionKind::Flag:
            break;
        case OptionKind::Text:
            CaptureText(option, settings.*option.text);
            break;
        case OptionKind::Combo:
            settings.*option.position =
                static_cast<std::int32_t>(SendMessageW(ValueControlOf(option), CB_GETCURSEL, 0, 0));
            break;
        case OptionKind::Slider:
            settings.*option.position =
                static_cast<std::int32_t>(SendMessageW(ValueControlOf(option), TBM_GETPOS, 0, 0));
            break;
    }
}

void RestoreValue(const Option& option, CSettings& settings) {
    switch (option.kind) {
        case OptionKind::Flag:
            break;
        case OptionKind::Text:
            RestoreText(option, settings.*option.text);
            break;
        case OptionKind::Combo:
            SendMessageW(ValueControlOf(option), CB_SETCURSEL,
                         static_cast<WPARAM>(settings.*option.position), 0);
            break;
        case OptionKind::Slider:
            SendMessageW(ValueControlOf(option), TBM_SETPOS, TRUE, settings.*option.position);
            break;
    }
}

}  // namespace

std::uint32_t CaptureSettings(CSettings& settings) {
    std::uint32_t mask = 0;
    for (const Option& option : AllOptions()) {
        if (SendMessageW(BoxOf(option), BM_GETCHECK, 0, 0) == kTicked) {
            mask |= option.bit;
            CaptureValue(option, settings);
        }
    }
    return mask;
}

void RestoreSettings(CSettings& settings, std::uint32_t mask) {
    for (const Option& option : AllOptions()) {
        if ((mask & option.bit) != 0) {
            Tick(option);
            RestoreValue(option, settings);
        }
    }
}

void TickFirstRunDefault() {
    for (const Option& option : AllOptions()) {
        if (option.bit == kFirstRunDefault) {
            Tick(option);
        }
    }
}
