#include "core/host_notes.h"

#include <cstdio>

#include "platform/host_text.h"

void NotePassedOver(const WCHAR* what, const WCHAR* content) {
    const std::string line = "fennelbright: " + platform::ReadableText(what) +
                             " is passed over: \"" + platform::ReadableText(content) +
                             "\" is no path that can be used\n";
    std::fputs(line.c_str(), stderr);
}

void NoteNotStored(const WCHAR* what) {
    const std::string line =
        "fennelbright: " + platform::ReadableText(what) + " cannot be written; the old one stays\n";
    std::fputs(line.c_str(), stderr);
}
