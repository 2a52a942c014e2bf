#pragma once

#include <map>

#include "platform/qt/base/window.h"

namespace platform::qt {

// The classes of windows that the program has made known.
class WindowClasses {
  public:
    struct Class {
        WNDPROC procedure;
        HBRUSH background;
    };

    // False when the name is taken or the record names no class.
    bool Register(const WNDCLASS& record);

    // False when there is none of that name, or a window of it lives.
    bool Unregister(const WCHAR* name, const WindowTable& windows);

    // Null when there is none.
    const Class* Find(const QString& name) const;

    void NoteWindow(const QString& name, HWND window);

  private:
    struct Entry {
        Class data;
        std::vector<HWND> windows;
    };
    std::map<QString, Entry> classes_;  // by their names without case
};

// Makes a control of one of the platform's own classes; null when there is no such class.
std::unique_ptr<Window> MakeControl(const QString& className, WindowContext& context,
                                    const CreateParams& params);

}  // namespace platform::qt
