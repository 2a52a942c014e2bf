#include "tests/support/display_fixture.h"

#include <QWheelEvent>

#include "core/window_operations.h"
#include "platform/display/window_module_loader.h"

LRESULT (*g_hook)(const ReceivedMessage& received) = nullptr;

namespace {

ReceivedMessages g_received;
bool g_turningLoop = false;

bool IsKept(UINT message) {
    return message == WM_COMMAND || message == WM_NOTIFY || message == WM_VSCROLL ||
           message == WM_HSCROLL || message == WM_LBUTTONUP;
}

LRESULT Keep(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    EXPECT_FALSE(g_turningLoop) << "the program runs below the toolkit";
    if (!IsKept(message)) {
        EXPECT_TRUE(message == WM_LBUTTONDOWN || message == WM_SETTEXT) << message;
        return DefWindowProcW(window, message, wParam, lParam);
    }
    const UINT code = message == WM_NOTIFY ? reinterpret_cast<const NMHDR*>(lParam)->code : 0;
    g_received.push_back({window, message, wParam, lParam, code});
    return g_hook == nullptr ? 0 : g_hook(ReceivedMessage(g_received.back()));
}

}  // namespace

extern "C" platform::DisplayWindowSystem* FennelbrightMakeWindows(
    const platform::WindowModuleParams* params);

std::unique_ptr<platform::DisplayWindowSystem> OpenUnseen(int scale) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const platform::WindowModuleParams params = platform::WindowParamsFor("A device[*]", scale);
    return std::unique_ptr<platform::DisplayWindowSystem>(FennelbrightMakeWindows(&params));
}

QWidget& Host() {
    for (QWidget* const window : QApplication::topLevelWidgets()) {
        if (window->findChild<QWidget*>(QStringLiteral("captionOk")) != nullptr) {
            return *window;
        }
    }
    ADD_FAILURE() << "no window on the desktop";
    std::abort();
}

QWidget& Control(int id) {
    auto* const found = Host().findChild<QWidget*>(QString::number(id));
    EXPECT_NE(found, nullptr) << id;
    return *found;
}

void Click(QWidget& widget, QPoint at) {
    QTest::mouseClick(&widget, Qt::LeftButton, Qt::NoModifier, at);
}

bool TurnWheel(QWidget& widget, QPoint units) {
    QWheelEvent wheel(QPointF(5, 5), widget.mapToGlobal(QPointF(5, 5)), {}, units, Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(&widget, &wheel);
    return wheel.isAccepted();
}

void RepeatKey(QWidget& widget, Qt::Key key, bool seen) {
    for (const QEvent::Type type : {QEvent::KeyRelease, QEvent::KeyPress}) {
        QKeyEvent event(type, key, Qt::NoModifier, {}, seen);
        event.setTimestamp(1);
        QApplication::sendEvent(&widget, &event);
    }
}

WindowsTest::WindowsTest(std::unique_ptr<platform::WindowSystem> windows)
    : windows_(std::move(windows)), inUse_(*windows_) {
    g_received.clear();
    WNDCLASS record{};
    record.style = CS_HREDRAW | CS_VREDRAW;
    record.lpfnWndProc = Keep;
    record.lpszClassName = TEXT("Kept");
    record.hbrBackground = SystemColorBrush(COLOR_WINDOW);
    RegisterClassW(&record);
    main_ = Open(TEXT("Kept"));
    page_ = CreateWindowExW(0, TEXT("Kept"), TEXT("Page"), WS_CHILD | WS_VISIBLE | WS_VSCROLL,
                            kPage.left, kPage.top, kPage.right - kPage.left,
                            kPage.bottom - kPage.top, main_, nullptr, nullptr, nullptr);
}

HWND WindowsTest::Open(const WCHAR* className) {
    return CreateWindowExW(WS_EX_CAPTIONOKBTN, className, TEXT("Top"), WS_VISIBLE, CW_USEDEFAULT,
                           CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, nullptr, nullptr, nullptr,
                           nullptr);
}

HWND WindowsTest::Add(const WCHAR* className, DWORD style, const RECT& place, int id,
                      const WCHAR* text) {
    return CreateWindowExW(0, className, text, style | WS_CHILD | WS_VISIBLE, place.left, place.top,
                           place.right - place.left, place.bottom - place.top, page_,
                           reinterpret_cast<HMENU>(static_cast<DWORD_PTR>(id)), nullptr, nullptr);
}

HWND WindowsTest::AddTabs(std::initializer_list<std::u16string> labels) {
    const HWND tabs =
        CreateWindowExW(0, TEXT("SysTabControl32"), TEXT(""), WS_CHILD | WS_VISIBLE | TCS_BOTTOM, 0,
                        0, 240, 268, main_, nullptr, nullptr, nullptr);
    WPARAM index = 0;
    for (std::u16string label : labels) {
        TCITEM item = {TCIF_TEXT, 0, 0, label.data(), 0, -1, 0};
        EXPECT_EQ(Send(tabs, TCM_INSERTITEM, index, &item), static_cast<LRESULT>(index));
        ++index;
    }
    return tabs;
}

void WindowsTest::Dispatch() {
    if (qApp != nullptr) {
        QCoreApplication::postEvent(qApp, new QEvent(QEvent::Quit));
    }
    MSG message{};
    while (true) {
        g_turningLoop = true;
        const BOOL more = GetMessageW(&message, nullptr, 0, 0);
        g_turningLoop = false;
        if (more == 0) {
            return;
        }
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
}

ReceivedMessages WindowsTest::TakeReceived() {
    return std::exchange(g_received, {});
}

LRESULT WindowsTest::Send(HWND window, UINT message, WPARAM wParam, const void* lParam) {
    return SendMessageW(window, message, wParam, reinterpret_cast<LPARAM>(lParam));
}

std::u16string WindowsTest::TextOf(HWND window) {
    WCHAR buffer[1100] = {};
    Send(window, WM_GETTEXT, std::size(buffer), buffer);
    return buffer;
}

Codes WindowsTest::TakeCodes() {
    Codes codes;
    for (const ReceivedMessage& received : TakeReceived()) {
        if (received.message == WM_COMMAND || received.message == WM_NOTIFY) {
            codes.push_back(received.message == WM_NOTIFY ? received.code
                                                          : HIWORD(received.wParam));
        }
    }
    return codes;
}
