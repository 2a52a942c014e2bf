#pragma once

#include "core/platform_types.h"

// What only the handheld's headers have.

inline constexpr DWORD IOCTL_HAL_REBOOT = 0x0101003C;
inline constexpr BYTE VK_OFF = 0xDF;
inline constexpr DWORD KEYEVENTF_SILENT = 0x0004;
inline constexpr DWORD WS_EX_CAPTIONOKBTN = handheld::kCaptionOkButton;
inline constexpr DWORD SHCMBF_HMENU = 0x0010;
inline constexpr DWORD kMenuBarInfoSize = 36;
inline constexpr DWORD SHIDIM_FLAGS = 0x0001;
inline constexpr DWORD SHIDIF_DONEBUTTON = 0x0001;
inline constexpr DWORD SHIDIF_SIZEDLG = 0x0002;
inline constexpr UINT kFileInfoSize = sizeof(SHFILEINFOW);

using handheld::KernelIoControl;
using handheld::SetCleanRebootFlag;
using handheld::SHCreateMenuBar;
using handheld::SHCreateShortcut;
using handheld::SHGetShortcutTarget;
using handheld::SHInitDialog;
using handheld::SHINITDLGINFO;
using handheld::SHMENUBARINFO;
