#include "shell/resources.h"

#include <array>
#include <cstddef>
#include <string_view>

namespace {

constexpr MenuItem kProgramItems[] = {
    {TEXT("Exit"), kCommandExit},
};

constexpr MenuItem kApplyItems[] = {
    {TEXT("Allow Restart"), kCommandApplyAllowRestart},
    {TEXT("Defer Restart"), kCommandApplyDeferRestart},
};

constexpr MenuItem kPowerItems[] = {
    {TEXT("Off"), kCommandPowerOff},
    {TEXT("Soft Reset"), kCommandSoftReset},
    {TEXT("Hard Reset"), kCommandHardReset},
};

constexpr MenuItem kHelpItems[] = {
    {TEXT("Index"), kCommandHelpIndex},
    {TEXT("About"), kCommandAbout},
};

constexpr MenuPopup kPopups[] = {
    {TEXT("Fennelbright"), kProgramItems},
    {TEXT("Apply"), kApplyItems},
    {TEXT("Power"), kPowerItems},
    {TEXT("Help"), kHelpItems},
};

constexpr MenuResource kMenu = {kMenuResource, kPopups};

constexpr std::size_t kIconSide = 16;

// A sprig of fennel with its bulb. The letters stand for the colours below.
constexpr std::string_view kIconRows[kIconSide] = {
    "....y...y...y...",  //
    ".y...y.yyy.y...y",  //
    "..y..yggyggy..y.",  //
    "y.gy..gggg..yg.y",  //
    ".ygg..ggg..ggggy",  //
    "..ggg.gg..ggg...",  //
    "...ggg.g.ggg....",  //
    "....gg.gggg.....",  //
    ".....gggggg.....",  //
    ".....dglggd.....",  //
    "....dllwlggd....",  //
    "...dllwwwlggd...",  //
    "...dllwwwllgd...",  //
    "...dlllwwlggd...",  //
    "....ddlllgdd....",  //
    "......dddd......",  //
};

constexpr IconPixel PixelOf(char letter) {
    switch (letter) {
        case 'd':
            return {0x1E, 0x5A, 0x28, true};
        case 'g':
            return {0x3C, 0xA0, 0x46, true};
        case 'l':
            return {0xB4, 0xDC, 0x96, true};
        case 'w':
            return {0xFF, 0xFF, 0xFF, true};
        case 'y':
            return {0xF0, 0xC8, 0x28, true};
        default:
            return {0, 0, 0, false};
    }
}

constexpr std::array<IconPixel, kIconSide * kIconSide> DrawIcon() {
    std::array<IconPixel, kIconSide * kIconSide> pixels{};
    for (std::size_t index = 0; index < pixels.size(); ++index) {
        pixels[index] = PixelOf(kIconRows[index / kIconSide][index % kIconSide]);
    }
    return pixels;
}

constexpr std::array<IconPixel, kIconSide* kIconSide> kIconPixels = DrawIcon();
constexpr IconResource kIcon = {kIconResource, kIconSide, kIconSide, kIconPixels};

}  // namespace

const MenuResource* FindMenuResource(UINT id) {
    return id == kMenu.id ? &kMenu : nullptr;
}

const IconResource* FindIconResource(UINT id) {
    return id == kIcon.id ? &kIcon : nullptr;
}
