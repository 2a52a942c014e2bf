#pragma once

#include <cerrno>
#include <cstdint>

#include "core/platform_types.h"
#include "platform/seam/device_store.h"
#include "platform/seam/refusing_window_system.h"
#include "tests/support/temporary_device.h"

// Keeps the boxes that it was asked to show, "[caption] text", and "?" after one with a choice.
class CollectedBoxes : public platform::RefusingWindowSystem {
  public:
    int MessageBoxW(HWND owner, const WCHAR* text, const WCHAR* caption, UINT type) override;

    std::vector<std::string> boxes;
};

// What one silent run starts from.
struct ApplyInput {
    std::vector<std::string> files;  // in the notation of TemporaryDevice::Make
    std::string registry;            // the text of registry.reg; empty: no such file
    std::uint32_t mask = 0;
    const WCHAR* text = nullptr;  // of every option that has one; null: none is stored
    std::int32_t position = 0;    // the same
    bool allowRestart = false;
};

// What it leaves. The program's own directory "App", with settings.dat in it, is left out.
struct ApplyResult {
    std::vector<std::string> boxes;
    std::vector<std::string> files;  // in the notation of TemporaryDevice::Listing
    std::string registry;
    std::uint32_t bytesCleaned = 0;
    int restarts = 0;   // 1 when one has ended the run
    std::string notes;  // on standard error
};

// A silent run on a store, and whether the registry could be stored at its end.
struct SilentRun {
    std::vector<std::string> boxes;
    std::uint32_t bytesCleaned = 0;
    int restarts = 0;
    bool isStored = false;
};
SilentRun RunSilently(platform::DeviceStore& store, bool allowRestart);

// Carries out a silent run on a device of its own. `failing`: the number of the call of the store
// that fails, for `reason`, an errno; 0 for none. `calls` receives how many there were.
ApplyResult ApplySilently(const ApplyInput& input, int failing = 0, int* calls = nullptr,
                          int reason = EIO);

// A silent run leaves StartUp shortcut and animations as the mask says, in every case. This
// registry has what it then wants, so that a test of another task sees no boxes from there.
extern const char kQuietTweaks[];
