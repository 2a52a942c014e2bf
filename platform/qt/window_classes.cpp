#include "platform/qt/window_classes.h"

#include <algorithm>
#include <array>

#include "platform/qt/base/window_table.h"
#include "platform/qt/controls/button_control.h"
#include "platform/qt/controls/combo_box_control.h"
#include "platform/qt/controls/edit_control.h"
#include "platform/qt/controls/label_control.h"
#include "platform/qt/controls/list_box_control.h"
#include "platform/qt/controls/slider_control.h"
#include "platform/qt/controls/tab_control.h"
#include "platform/qt/controls/tree_control.h"

namespace platform::qt {

namespace {

template <typename Control>
std::unique_ptr<Window> Make(WindowContext& context, const CreateParams& params) {
    return std::make_unique<Control>(context, params);
}

struct ControlClass {
    const char* name;
    std::unique_ptr<Window> (*make)(WindowContext& context, const CreateParams& params);
};

constexpr std::array kControls = {
    ControlClass{"BUTTON", Make<ButtonControl>},
    ControlClass{"STATIC", Make<LabelControl>},
    ControlClass{"EDIT", Make<EditControl>},
    ControlClass{"LISTBOX", Make<ListBoxControl>},
    ControlClass{"COMBOBOX", Make<ComboBoxControl>},
    ControlClass{"msctls_trackbar32", Make<SliderControl>},
    ControlClass{"SysTabControl32", Make<TabControl>},
    ControlClass{"SysTreeView32", Make<TreeControl>},
};

const ControlClass* FindControl(const QString& name) {
    const auto* const found =
        std::find_if(kControls.begin(), kControls.end(), [&](const ControlClass& control) {
            return name.compare(QLatin1String(control.name), Qt::CaseInsensitive) == 0;
        });
    return found == kControls.end() ? nullptr : found;
}

// The name of what a window is for: the tick or the label right before it, else the last label,
// else its own text.
QString AccessibleName(const WindowContext& context, const CreateParams& params) {
    const std::vector<Window*> siblings = context.windows.ChildrenOf(params.parent);
    QString label = siblings.empty() ? QString() : siblings.back()->LabelForNext();
    for (auto sibling = siblings.rbegin(); label.isEmpty() && sibling != siblings.rend();
         ++sibling) {
        label = (*sibling)->LabelForLater();
    }
    return label.isEmpty() ? params.text : label;
}

}  // namespace

bool WindowClasses::Register(const WNDCLASS& record) {
    if (record.lpszClassName == nullptr || record.lpfnWndProc == nullptr) {
        return false;
    }
    const QString name = TextOf(record.lpszClassName);
    const Entry entry = {{record.lpfnWndProc, record.hbrBackground}, {}};
    return FindControl(name) == nullptr && classes_.emplace(name.toCaseFolded(), entry).second;
}

bool WindowClasses::Unregister(const WCHAR* name, const WindowTable& windows) {
    const auto found = classes_.find(TextOf(name).toCaseFolded());
    if (found == classes_.end()) {
        return false;
    }
    const std::vector<HWND>& made = found->second.windows;
    if (std::any_of(made.begin(), made.end(),
                    [&](HWND window) { return windows.Find(window) != nullptr; })) {
        return false;
    }
    classes_.erase(found);
    return true;
}

const WindowClasses::Class* WindowClasses::Find(const QString& name) const {
    const auto found = classes_.find(name.toCaseFolded());
    return found == classes_.end() ? nullptr : &found->second.data;
}

void WindowClasses::NoteWindow(const QString& name, HWND window) {
    classes_[name.toCaseFolded()].windows.push_back(window);
}

std::unique_ptr<Window> MakeControl(const QString& className, WindowContext& context,
                                    const CreateParams& params) {
    const ControlClass* const control = FindControl(className);
    if (control == nullptr) {
        return nullptr;
    }
    std::unique_ptr<Window> window = control->make(context, params);
    const QString name = AccessibleName(context, params);
    const bool isNameless = params.text.isEmpty() || className.compare(u"msctls_trackbar32") == 0;
    if (isNameless && !name.isEmpty()) {
        window->widget().setAccessibleName(name);
    }
    return window;
}

}  // namespace platform::qt
