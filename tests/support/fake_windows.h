#pragma once

#include <algorithm>
#include <deque>
#include <functional>
#include <map>
#include <set>

#include "core/application.h"
#include "core/wide_text.h"
#include "platform/text/readable_text.h"
#include "tests/support/apply_device.h"

// NOLINTBEGIN(performance-no-int-to-ptr)

// What the fake keeps of one window. Its bounds count from its parent's client area.
struct FakeWindow {
    std::u16string className;
    std::u16string text;
    DWORD style = 0;
    DWORD extendedStyle = 0;
    RECT bounds{};
    HWND parent = nullptr;
    DWORD_PTR id = 0;
    WNDPROC procedure = nullptr;  // null: a control
    bool visible = false;
    LRESULT check = 0;
    int position = -1;                      // of combo box, slider or tab control
    int lowest = 0;                         // position of a slider
    int highest = 100;                      // the same
    std::vector<std::u16string> entries{};  // of combo box, list box or tab control
    SCROLLINFO scroll{sizeof(SCROLLINFO), SIF_ALL, 0, 100, 0, 0, 0};
    SCROLLINFO scrollGiven{};  // to SetScrollInfo last
};

// A window system in memory that keeps what was done with it. A user's part is done by the steps.
class FakeWindows : public CollectedBoxes {
  public:
    std::vector<std::string> calls;  // what changes a window, such as "ShowWindow BUTTON 50001 0"
    std::set<std::string> failing;   // calls, spelt as above, that come back with failure
    int failingUse = 0;              // the use of the fake that fails, from 1; 0: none
    LRESULT failure = 0;             // what a message gives that fails
    LRESULT defaultResult = 0;       // what DefWindowProcW returns
    int uses = 0;
    int strayHandles = 0;  // uses of a handle that is neither null nor a living window's
    std::map<HWND, FakeWindow> windows;

    // Each is carried out when the program waits for a message and none is queued. After the last
    // one the OK on the main window's caption is pressed.
    std::deque<std::function<void()>> steps;

    void Post(HWND window, UINT message, WPARAM wParam, LPARAM lParam = 0) {
        queue_.push_back({window, message, wParam, lParam, 0, {}});
    }

    FakeWindow& At(HWND window) { return windows.at(window); }

    WORD RegisterClassW(const WNDCLASS* windowClass) override {
        EXPECT_TRUE(windowClass->style == 3 && windowClass->hInstance == g_Instance);
        const std::u16string key = KeyOf(windowClass->lpszClassName);
        EXPECT_EQ(reinterpret_cast<DWORD_PTR>(windowClass->hbrBackground),
                  key == u"searching" ? 0x40000001u : 0x40000005u);
        return Goes("RegisterClassW " + platform::ReadableText(windowClass->lpszClassName)) &&
               windowClass->lpfnWndProc != nullptr && !kControlClasses.contains(key) &&
               classes_.emplace(key, windowClass->lpfnWndProc).second;
    }

    BOOL UnregisterClassW(const WCHAR* className, HINSTANCE instance) override {
        EXPECT_EQ(instance, g_Instance);
        Goes("UnregisterClassW " + platform::ReadableText(className));
        const bool used = std::ranges::any_of(windows, [&](const auto& window) {
            return KeyOf(window.second.className) == KeyOf(className);
        });
        return !used && classes_.erase(KeyOf(className)) != 0;
    }

    HWND CreateWindowExW(DWORD extendedStyle, const WCHAR* className, const WCHAR* text,
                         DWORD style, int x, int y, int width, int height, HWND parent, HMENU menu,
                         HINSTANCE instance, void* parameter) override {
        EXPECT_TRUE(instance == g_Instance && parameter == nullptr);
        const auto known = classes_.find(KeyOf(className));
        const bool isChild = (style & (WS_CHILD | WS_POPUP)) == WS_CHILD;
        const bool isControl = kControlClasses.contains(KeyOf(className));
        const RECT bounds = x == CW_USEDEFAULT
                                ? RECT{0, kCaptionHeight, kScreenWidth, kScreenHeight}
                                : RECT{x, y, x + width, y + height};
        const auto id = reinterpret_cast<DWORD_PTR>(menu);
        FakeWindow window = {className, text, style, extendedStyle, bounds, parent, id};
        window.visible = (style & WS_VISIBLE) != 0;
        window.position = KeyOf(className) == u"msctls_trackbar32" ? 0 : -1;
        window.procedure = known == classes_.end() ? nullptr : known->second;
        const bool goes = Goes("CreateWindowExW" + NameOf(window)) &&
                          (known != classes_.end() || isControl) &&
                          (parent == nullptr ? !isControl && !isChild : Living(parent) != nullptr);
        return goes ? Add(std::move(window)) : nullptr;
    }

    BOOL DestroyWindow(HWND window) override {
        if (!Goes("DestroyWindow", window)) {
            return 0;
        }
        windows.erase(window);
        const auto isOrphan = [this](const auto& other) {
            return other.second.parent != nullptr && !windows.contains(other.second.parent);
        };
        while (std::erase_if(windows, isOrphan) != 0) {
        }
        std::erase_if(queue_, [this](const MSG& message) {
            return message.hwnd != nullptr && !windows.contains(message.hwnd);
        });
        return 1;
    }

    BOOL ShowWindow(HWND window, int command) override {
        return Goes("ShowWindow", window, ' ' + std::to_string(command)) &&
               std::exchange(At(window).visible, command == SW_SHOWNORMAL);
    }

    BOOL UpdateWindow(HWND window) override { return Goes("UpdateWindow", window); }

    BOOL GetClientRect(HWND window, RECT* rectangle) override {
        const FakeWindow* const found = Living(window);
        if (found == nullptr) {
            return 0;
        }
        const int bar = (found->style & WS_VSCROLL) != 0 ? kScrollBarWidth : 0;
        *rectangle = {0, 0, found->bounds.right - found->bounds.left - bar,
                      found->bounds.bottom - found->bounds.top};
        return 1;
    }

    BOOL GetWindowRect(HWND window, RECT* rectangle) override {
        const FakeWindow* found = Living(window);
        if (found == nullptr) {
            return 0;
        }
        *rectangle = found->bounds;
        while ((found->style & WS_POPUP) == 0 && windows.contains(found->parent)) {
            found = &At(found->parent);
            Move(*rectangle, found->bounds.left, found->bounds.top);
        }
        return 1;
    }

    BOOL MoveWindow(HWND window, int x, int y, int width, int height, BOOL repaint) override {
        EXPECT_EQ(repaint, FALSE);
        const bool goes = Goes("MoveWindow", window);
        if (goes) {
            At(window).bounds = {x, y, x + width, y + height};
        }
        return goes;
    }

    BOOL GetMessageW(MSG* message, HWND window, UINT lowest, UINT highest) override {
        EXPECT_TRUE(window == nullptr && lowest == 0 && highest == 0);
        if (Fails()) {
            return -1;
        }
        if (queue_.empty()) {
            NextStep();
        }
        if (queue_.empty()) {
            return 0;
        }
        *message = queue_.front();
        queue_.pop_front();
        return message->message != WM_QUIT;
    }

    LRESULT DispatchMessageW(const MSG* message) override {
        return SendMessageW(message->hwnd, message->message, message->wParam, message->lParam);
    }

    LRESULT DefWindowProcW(HWND window, UINT message, WPARAM /*wParam*/,
                           LPARAM /*lParam*/) override {
        return Goes("DefWindowProcW", window, ' ' + std::to_string(message)) ? defaultResult : 0;
    }

    LRESULT SendMessageW(HWND window, UINT message, WPARAM wParam, LPARAM lParam) override {
        FakeWindow* const target = Living(window);
        if (target == nullptr) {
            return failure;
        }
        return target->procedure != nullptr ? target->procedure(window, message, wParam, lParam)
                                            : Answer(window, *target, message, wParam, lParam);
    }

    BOOL GetScrollInfo(HWND window, int bar, SCROLLINFO* info) override {
        EXPECT_TRUE(bar == SB_VERT && info->cbSize == 28);
        const FakeWindow* const found = Living(window);
        if (found == nullptr || (found->style & WS_VSCROLL) == 0) {
            return 0;
        }
        CopyFields(found->scroll, *info, info->fMask);
        return 1;
    }

    int SetScrollInfo(HWND window, int bar, const SCROLLINFO* info, BOOL redraw) override {
        EXPECT_TRUE(bar == SB_VERT && info->cbSize == 28 && redraw == TRUE);
        if (!Goes("SetScrollInfo", window) || (At(window).style & WS_VSCROLL) == 0) {
            return 0;
        }
        At(window).scrollGiven = *info;
        SCROLLINFO& kept = At(window).scroll;
        CopyFields(*info, kept, info->fMask);
        kept.nMax = std::max(kept.nMin, kept.nMax);
        return kept.nPos = kept.nTrackPos = std::clamp(kept.nPos, kept.nMin, kept.nMax);
    }

    int ScrollWindowEx(HWND window, int dx, int dy, const RECT* scroll, const RECT* clip,
                       HRGN updateRegion, RECT* update, UINT flags) override {
        EXPECT_TRUE(dx == 0 && scroll == nullptr && clip != nullptr && updateRegion == nullptr &&
                    update == nullptr && flags == SW_SCROLLCHILDREN);
        if (!Goes("ScrollWindowEx", window, ' ' + std::to_string(dy))) {
            return 0;
        }
        for (auto& [handle, child] : windows) {
            if (child.parent == window) {
                Move(child.bounds, 0, dy);
            }
        }
        return 2;
    }

    BOOL SHCreateMenuBar(SHMENUBARINFO* info) override {
        EXPECT_TRUE(info->cbSize == 36 && info->dwFlags == SHCMBF_HMENU &&
                    info->hInstRes == g_Instance);
        if (!Goes("SHCreateMenuBar", info->hwndParent) || info->nToolBarId != 101) {
            return 0;
        }
        const RECT bounds = {0, kScreenHeight - kBarHeight, kScreenWidth, kScreenHeight};
        info->hwndMB = Add({u"", u"", WS_POPUP, 0, bounds, info->hwndParent});
        return 1;
    }

  private:
    static constexpr int kCaptionHeight = 26;
    static constexpr int kBarHeight = 26;
    static constexpr int kScrollBarWidth = 13;
    static constexpr int kScreenWidth = 240;
    static constexpr int kScreenHeight = 320;

    const std::set<std::u16string> kControlClasses = {
        u"button",         u"edit", u"combobox", u"listbox", u"static", u"msctls_trackbar32",
        u"systabcontrol32"};

    static std::u16string KeyOf(std::u16string name) {
        for (WCHAR& unit : name) {
            unit = unit >= u'A' && unit <= u'Z' ? static_cast<WCHAR>(unit | 0x20) : unit;
        }
        return name;
    }

    static void Move(RECT& bounds, int dx, int dy) {
        bounds = {bounds.left + dx, bounds.top + dy, bounds.right + dx, bounds.bottom + dy};
    }

    static void CopyFields(const SCROLLINFO& from, SCROLLINFO& to, UINT mask) {
        const bool range = (mask & SIF_RANGE) != 0;
        to.nMin = range ? from.nMin : to.nMin;
        to.nMax = range ? from.nMax : to.nMax;
        to.nPage = (mask & SIF_PAGE) != 0 ? from.nPage : to.nPage;
        to.nPos = (mask & SIF_POS) != 0 ? from.nPos : to.nPos;
        to.nTrackPos = (mask & SIF_TRACKPOS) != 0 ? from.nTrackPos : to.nTrackPos;
    }

    // The next thing that the user does, once nothing is left to be done.
    void NextStep() {
        if (!steps.empty()) {
            const std::function<void()> step = std::move(steps.front());
            steps.pop_front();
            return step();
        }
        const auto shown = std::ranges::find_if(
            windows, [](const auto& other) { return other.second.procedure != nullptr; });
        g_Running = g_Running && shown != windows.end();  // else no window could end it
        if (g_Running) {
            Post(shown->first, WM_COMMAND, IDOK);
        }
    }

    bool Fails() { return ++uses == failingUse; }

    // Keeps the call and returns whether it is to succeed.
    bool Goes(const std::string& call) {
        calls.push_back(call);
        return !Fails() && !failing.contains(call);
    }

    // The same for a call that does something to a window.
    bool Goes(const std::string& operation, HWND window, const std::string& rest = "") {
        const FakeWindow* const target = Living(window);
        const std::string name = target == nullptr ? " nothing" : NameOf(*target);
        return Goes(operation + name + rest) && target != nullptr;
    }

    static std::string NameOf(const FakeWindow& window) {
        const std::string id = window.id == 0 ? "" : ' ' + std::to_string(window.id);
        return ' ' + platform::ReadableText(window.className.c_str()) + id;
    }

    FakeWindow* Living(HWND window) {
        const auto found = windows.find(window);
        if (found == windows.end()) {
            strayHandles += window == nullptr ? 0 : 1;
        }
        return found == windows.end() || Fails() ? nullptr : &found->second;
    }

    HWND Add(FakeWindow window) {
        const auto handle = reinterpret_cast<HWND>(++lastHandle_);
        windows.emplace(handle, std::move(window));
        return handle;
    }

    LRESULT Answer(HWND handle, FakeWindow& control, UINT message, WPARAM wParam, LPARAM lParam) {
        const auto number = static_cast<int>(static_cast<LPARAM>(wParam));
        const bool ofCombo = message >= CB_ADDSTRING && message <= CB_SETCURSEL;
        const bool ofSlider = message >= TBM_GETPOS && message <= TBM_SETRANGE;
        const bool ofText = message == WM_SETTEXT || message == WM_GETTEXT;
        EXPECT_EQ(ofCombo, control.className == u"COMBOBOX" && !ofText);
        EXPECT_EQ(ofSlider, control.className == u"msctls_trackbar32" && !ofText);
        switch (message) {
            case BM_GETCHECK:
                return control.check;
            case BM_SETCHECK:
                control.check = (control.style & 0xF) == BS_AUTOCHECKBOX && number != 0 ? 1 : 0;
                return 0;
            case WM_GETTEXT:
                return CopyText(ShownText(control), wParam, lParam);
            case WM_SETTEXT:
                return SetText(handle, control, TextOf(lParam));
            case CB_ADDSTRING:
            case LB_ADDSTRING:
                control.entries.emplace_back(TextOf(lParam));
                return static_cast<LRESULT>(control.entries.size()) - 1;
            case CB_SETCURSEL:
                if (number < -1 || number >= static_cast<int>(control.entries.size())) {
                    return CB_ERR;
                }
                return control.position = number;
            case CB_GETCURSEL:
            case TBM_GETPOS:
            case TCM_GETCURSEL:
                return control.position;
            case TBM_SETRANGE:
                control.lowest = LOWORD(static_cast<DWORD_PTR>(lParam));
                control.highest = HIWORD(static_cast<DWORD_PTR>(lParam));
                return Slide(control, control.position);
            case TBM_SETPOS:
                return Slide(control, static_cast<int>(lParam));
            case TCM_INSERTITEM:
                return Goes("TCM_INSERTITEM " + std::to_string(wParam)) && number >= 0 &&
                               lParam != 0
                           ? InsertTab(control, static_cast<std::size_t>(number), lParam)
                           : -1;
            case TCM_ADJUSTRECT: {
                auto* area = reinterpret_cast<RECT*>(lParam);
                *area = {area->left + 4, area->top + 4, area->right - 4, area->bottom - 25};
                return 0;
            }
            case LB_SETHORIZONTALEXTENT:
                Goes("LB_SETHORIZONTALEXTENT " + std::to_string(wParam));
                return 0;
            case LB_GETSELCOUNT:
                return 0;
            default:
                ADD_FAILURE() << "unexpected message " << message;
                return 0;
        }
    }

    static std::u16string ShownText(const FakeWindow& control) {
        return control.className != u"COMBOBOX" ? control.text
               : control.position < 0
                   ? u""
                   : control.entries.at(static_cast<std::size_t>(control.position));
    }

    static const WCHAR* TextOf(LPARAM lParam) { return reinterpret_cast<const WCHAR*>(lParam); }

    static LRESULT CopyText(const std::u16string& text, WPARAM room, LPARAM lParam) {
        auto* buffer = reinterpret_cast<WCHAR*>(lParam);
        if (room == 0) {
            return 0;
        }
        const std::size_t count = text.copy(buffer, room - 1);
        buffer[count] = 0;
        return static_cast<LRESULT>(count);
    }

    LRESULT SetText(HWND handle, FakeWindow& control, const WCHAR* text) {
        if (control.className == u"COMBOBOX") {
            return CB_ERR;
        }
        control.text = text;
        const bool reports = control.className == u"EDIT";
        const auto [parent, id] = std::pair(control.parent, static_cast<WORD>(control.id));
        for (const WORD code : {EN_UPDATE, EN_CHANGE}) {
            if (reports && windows.contains(handle)) {
                SendMessageW(parent, WM_COMMAND, MAKELONG(id, code),
                             reinterpret_cast<LPARAM>(handle));
            }
        }
        return 1;
    }

    static LRESULT Slide(FakeWindow& control, int position) {
        control.position = std::clamp(position, control.lowest, control.highest);
        return 0;
    }

    static LRESULT InsertTab(FakeWindow& control, std::size_t index, LPARAM lParam) {
        const auto* item = reinterpret_cast<const TCITEM*>(lParam);
        EXPECT_EQ(item->mask, TCIF_TEXT);
        EXPECT_EQ(item->iImage, -1);
        const auto place = static_cast<int>(std::min(index, control.entries.size()));
        control.entries.emplace(control.entries.begin() + place, item->pszText);
        control.position += place <= control.position || control.position < 0 ? 1 : 0;
        return place;
    }

    std::map<std::u16string, WNDPROC> classes_;
    std::deque<MSG> queue_;
    DWORD_PTR lastHandle_ = 0x1000;
};

// NOLINTEND(performance-no-int-to-ptr)
