// Calls the platform's operations as the program and its neighbours do, and writes a line for each
// result. In the program's place on both platforms; the device is the one of
// compare_transcripts.py.

#include "tests/second_platform/transcript.h"

#include "core/win_main.h"

std::string Readable(WideView text) {
    std::string readable;
    for (const WCHAR unit : text.substr(0, 40)) {
        char part[8] = {static_cast<char>(unit)};
        if (unit < 0x20 || unit > 0x7E) {
            std::snprintf(part, sizeof part, "<%04X>", static_cast<unsigned>(unit));
        }
        readable += part;
    }
    return readable + (text.size() > 40 ? "... " + std::to_string(text.size()) : "");
}

bool IsSilentCommandLine(const WCHAR* commandLine) {
    return commandLine[0] != 0;
}

int WinMain(HINSTANCE /*hInstance*/, HINSTANCE /*hPrevInstance*/, WCHAR* /*lpCmdLine*/,
            int /*nShowCmd*/) {
    WriteFiles();
    WriteRegistry();
    WriteWindows();
    return 0;
}
