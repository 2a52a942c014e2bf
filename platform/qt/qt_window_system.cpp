#include "platform/qt/qt_window_system.h"

#include <QEvent>
#include <QImage>
#include <QMenuBar>
#include <algorithm>

#include "platform/qt/base/handheld_style.h"
#include "platform/qt/controls/tab_control.h"
#include "platform/qt/controls/tree_control.h"
#include "platform/qt/desktop/toolkit_start.h"
#include "platform/qt/screen/menu_bar.h"

namespace platform::qt {

namespace {

constexpr DWORD_PTR kSmallIcons = 1;
constexpr int kSimpleRegion = 2;

// What the handheld's screen has below its caption bar.
constexpr RECT kWorkArea = {0, kCaptionHeight, kScreenWidth, kScreenHeight};

RECT PlaceOf(int x, int y, int width, int height) {
    return {x, y, x + width, y + height};
}

RECT TopLevelPlace(int x, int y, int width, int height) {
    const bool whole = x == CW_USEDEFAULT || y == CW_USEDEFAULT || width == CW_USEDEFAULT ||
                       height == CW_USEDEFAULT;
    return whole ? kWorkArea : PlaceOf(x, y, width, height);
}

// The dialog unit is a quarter of a character's width and an eighth of its height.
RECT DialogPlace(const DLGTEMPLATE& dialog, const QFontMetrics& metrics) {
    const int width = dialog.cx * metrics.averageCharWidth() / 4;
    const int height = dialog.cy * metrics.height() / 8;
    return {kWorkArea.left, kWorkArea.top, std::min(kWorkArea.left + width, kWorkArea.right),
            std::min(kWorkArea.top + height, kWorkArea.bottom)};
}

// The toolkit would hand the keyboard on to a neighbour of what is hidden, as its user does by Tab.
void GiveUpKeyboard(const QWidget& hidden) {
    QWidget* const focus = QApplication::focusWidget();
    if (focus != nullptr && (focus == &hidden || hidden.isAncestorOf(focus))) {
        focus->clearFocus();
    }
}

QIcon IconOf(const IconResource& icon) {
    QImage image(icon.width, icon.height, QImage::Format_ARGB32);
    int place = 0;
    for (const IconPixel& pixel : icon.pixels) {
        image.setPixel(place % icon.width, place / icon.width,
                       qRgba(pixel.red, pixel.green, pixel.blue, pixel.opaque ? 0xFF : 0));
        ++place;
    }
    return QIcon(QPixmap::fromImage(image));
}

// Turns the desktop's request to end the application into the message that it is.
class QuitWatch : public QObject {
  public:
    QuitWatch(QApplication& application, MessageQueue& queue)
        : QObject(&application), queue_(queue) {
        application.installEventFilter(this);
    }

    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::Quit) {
            queue_.Post(nullptr, WM_QUIT, 0, 0);
            return true;
        }
        return QObject::eventFilter(watched, event);
    }

  private:
    MessageQueue& queue_;
};

}  // namespace

QtWindows::QtWindows(const DisplayNeeds& needs, std::unique_ptr<QApplication> application)
    : findMenu_(needs.findMenu),
      answerUnseen_(needs.answerUnseen),
      application_(std::move(application)),
      host_(QString::fromUtf8(needs.title),
            {.okPressed = [this] { queue_.Post(fronts_.Front(), WM_COMMAND, IDOK, 0); },
             .closePressed = [this] { EndRun(); },
             .tabKeyPressed = [this](int step) { QueueTabStep(step); }}),
      station_{windows_, queue_, host_},
      fronts_(windows_, host_),
      closeWatch_(host_, [this] { EndRun(); }) {
    new QuitWatch(*application_, queue_);  // the application's own
    if (const IconResource* const icon = needs.findIcon(kIconResource)) {
        QApplication::setWindowIcon(IconOf(*icon));
    }
}

QtWindows::~QtWindows() = default;

void QtWindows::AnswerDesktop() {
    if (DisplayIsLost()) {
        return;  // the work goes on to its end
    }
    if (QGuiApplication::overrideCursor() == nullptr) {
        QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    }
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents |
                                    QEventLoop::ExcludeSocketNotifiers);
}

WORD QtWindows::RegisterClassW(const WNDCLASS* windowClass) {
    return windowClass != nullptr && classes_.Register(*windowClass) ? 1 : 0;
}

BOOL QtWindows::UnregisterClassW(const WCHAR* className, HINSTANCE /*instance*/) {
    return className != nullptr && classes_.Unregister(className, windows_);
}

HWND QtWindows::CreateWindowExW(DWORD extendedStyle, const WCHAR* className, const WCHAR* text,
                                DWORD style, int x, int y, int width, int height, HWND parent,
                                HMENU menu, HINSTANCE /*instance*/, void* /*parameter*/) {
    const Window* const above = windows_.Find(parent);
    if (className == nullptr || (above == nullptr && parent != nullptr)) {
        return nullptr;
    }
    const QString name = TextOf(className);
    const WindowClasses::Class* const made = classes_.Find(name);
    const bool onScreen = above == nullptr || (made != nullptr && (style & WS_POPUP) != 0);
    const Birth birth = {
        .handle = windows_.NewHandle(),
        .parent = parent,
        .id = above == nullptr ? 0 : static_cast<int>(reinterpret_cast<std::intptr_t>(menu)),
        .style = style,
        .text = TextOf(text),
        .place =
            above == nullptr ? TopLevelPlace(x, y, width, height) : PlaceOf(x, y, width, height),
        .surface = onScreen ? &host_ : &above->surface()};
    if (made != nullptr) {
        classes_.NoteWindow(name, birth.handle);
        return AddProgramWindow(birth, extendedStyle, *made);
    }
    std::unique_ptr<Window> control =
        above == nullptr ? nullptr : MakeControl(name, station_, birth);
    if (control == nullptr) {
        return nullptr;
    }
    control->widget().setVisible((style & WS_VISIBLE) != 0);
    windows_.Add(std::move(control));
    return birth.handle;
}

HWND QtWindows::AddProgramWindow(const Birth& birth, DWORD extendedStyle,
                                 const WindowClasses::Class& made) {
    const ProgramTraits traits = {.procedure = made.procedure,
                                  .dialog = false,
                                  .topLevel = birth.parent == nullptr,
                                  .hasOk = (extendedStyle & WS_EX_CAPTIONOKBTN) != 0,
                                  .background = BackgroundColor(made.background)};
    auto window = std::make_unique<ProgramWindow>(station_, birth, traits);
    const Window& added = *window;
    windows_.Add(std::move(window));
    if ((birth.style & WS_VISIBLE) != 0) {
        Open(added);
    }
    return birth.handle;
}

BOOL QtWindows::DestroyWindow(HWND window) {
    const bool destroyed = windows_.Destroy(window);
    fronts_.Refresh();
    return destroyed;
}

BOOL QtWindows::ShowWindow(HWND window, int command) {
    const Window* const found = windows_.Find(window);
    if (found == nullptr) {
        return FALSE;
    }
    const bool visible = !found->widget().isHidden();
    if (command != SW_HIDE) {
        Open(*found);
        return visible;
    }
    GiveUpKeyboard(found->widget());
    found->widget().hide();
    if (fronts_.IsTopLevel(*found)) {
        fronts_.Hide(*found);
    }
    return visible;
}

void QtWindows::Open(const Window& window) {
    window.widget().show();
    if (fronts_.IsTopLevel(window)) {
        fronts_.Raise(window);
        host_.show();
        HeedSignals();
    } else if (window.widget().parentWidget() == &host_) {
        window.widget().raise();
    }
}

BOOL QtWindows::UpdateWindow(HWND window) {
    if (Window* const found = windows_.Find(window)) {
        found->PrepareToPaint();
        QCoreApplication::sendPostedEvents(&host_, QEvent::UpdateRequest);
        return TRUE;
    }
    return FALSE;
}

BOOL QtWindows::GetClientRect(HWND window, RECT* rectangle) {
    const Window* const found = windows_.Find(window);
    if (found == nullptr || rectangle == nullptr) {
        return FALSE;
    }
    *rectangle = PlaceOf(0, 0, found->surface().width(), found->surface().height());
    return TRUE;
}

BOOL QtWindows::GetWindowRect(HWND window, RECT* rectangle) {
    const Window* const found = windows_.Find(window);
    if (found == nullptr || rectangle == nullptr) {
        return FALSE;
    }
    const QPoint corner = found->widget().mapTo(&host_, QPoint(0, 0));
    *rectangle = PlaceOf(corner.x(), corner.y(), found->widget().width(), found->widget().height());
    return TRUE;
}

BOOL QtWindows::MoveWindow(HWND window, int x, int y, int width, int height, BOOL /*repaint*/) {
    Window* const found = windows_.Find(window);
    if (found == nullptr) {
        return FALSE;
    }
    found->Place(QRect(x, y, width, height));
    return TRUE;
}

HWND QtWindows::SetFocus(HWND window) {
    const QWidget* const before = QApplication::focusWidget();
    const HWND previous = before == nullptr ? nullptr : HandleOf(*before);
    if (const Window* const found = windows_.Find(window)) {
        if (fronts_.IsTopLevel(*found) && !found->widget().isHidden()) {
            fronts_.Raise(*found);
        }
        found->widget().setFocus(Qt::OtherFocusReason);
    }
    return previous;
}

BOOL QtWindows::SetWindowTextW(HWND window, const WCHAR* text) {
    if (windows_.Find(window) == nullptr) {
        return FALSE;
    }
    windows_.Send(window, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text));
    fronts_.Refresh();
    return TRUE;
}

BOOL QtWindows::GetMessageW(MSG* message, HWND /*window*/, UINT /*lowest*/, UINT /*highest*/) {
    if (message == nullptr) {
        return -1;
    }
    while (true) {
        // Here alone no handler of the toolkit is at work that might still need what it has given
        // up.
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        MSG next;
        while (queue_.Take(next)) {
            if (CanBeTold(next)) {
                *message = next;
                return next.message != WM_QUIT;
            }
        }
        if (DisplayIsLost() && !ending_ && fronts_.Main() != nullptr) {
            EndRun();
            continue;
        }
        QGuiApplication::restoreOverrideCursor();
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
}

// A window that is gone hears nothing and has said nothing.
bool QtWindows::CanBeTold(const MSG& message) const {
    if (message.message == WM_QUIT) {
        return true;
    }
    const bool fromControl = message.message == WM_COMMAND || message.message == WM_HSCROLL;
    // NOLINTNEXTLINE(performance-no-int-to-ptr)
    const HWND control = fromControl ? reinterpret_cast<HWND>(message.lParam) : nullptr;
    return windows_.Find(message.hwnd) != nullptr &&
           (control == nullptr || windows_.Find(control) != nullptr);
}

// The toolkit's edit boxes have read the keyboard already.
BOOL QtWindows::TranslateMessage(const MSG* /*message*/) {
    return FALSE;
}

LRESULT QtWindows::DispatchMessageW(const MSG* message) {
    Window* const window = message == nullptr ? nullptr : windows_.Find(message->hwnd);
    if (window == nullptr) {
        return 0;
    }
    if (message->message >= kFirstOwnMessage) {
        window->CarryOut(MSG(*message));
        return 0;
    }
    return window->Receive(message->message, message->wParam, message->lParam);
}

LRESULT QtWindows::DefWindowProcW(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    Window* const found = windows_.Find(window);
    return found == nullptr ? 0 : found->Answer(message, wParam, lParam);
}

LRESULT QtWindows::SendMessageW(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    return windows_.Send(window, message, wParam, lParam);
}

LRESULT QtWindows::SendDlgItemMessageW(HWND parent, int id, UINT message, WPARAM wParam,
                                       LPARAM lParam) {
    if (windows_.Find(parent) == nullptr) {
        return 0;
    }
    for (const Window* const child : windows_.ChildrenOf(parent)) {
        if (child->id() == id) {
            return windows_.Send(child->handle(), message, wParam, lParam);
        }
    }
    return 0;
}

int QtWindows::MessageBoxW(HWND /*owner*/, const WCHAR* text, const WCHAR* caption, UINT type) {
    HeedSignals();
    if (ending_ || DisplayIsLost()) {
        return answerUnseen_(text, caption, type);
    }
    QGuiApplication::restoreOverrideCursor();
    return boxes_.Show(&host_, TextOf(text), TextOf(caption), type);
}

BOOL QtWindows::GetScrollInfo(HWND window, int bar, SCROLLINFO* info) {
    const ProgramWindow* const found = FindProgramWindow(window);
    if (found == nullptr || found->Range() == nullptr || bar != SB_VERT || info == nullptr) {
        return FALSE;
    }
    found->Range()->Get(*info);
    return TRUE;
}

int QtWindows::SetScrollInfo(HWND window, int bar, const SCROLLINFO* info, BOOL /*redraw*/) {
    ProgramWindow* const found = FindProgramWindow(window);
    if (found == nullptr || found->Range() == nullptr || bar != SB_VERT || info == nullptr) {
        return 0;
    }
    return found->SetRange(*info);
}

int QtWindows::ScrollWindowEx(HWND window, int dx, int dy, const RECT* scroll, const RECT* /*clip*/,
                              HRGN /*updateRegion*/, RECT* /*update*/, UINT flags) {
    ProgramWindow* const found = FindProgramWindow(window);
    if (found == nullptr || scroll != nullptr) {
        return 0;
    }
    if ((flags & SW_SCROLLCHILDREN) != 0) {
        found->MoveChildren(dx, dy);
    }
    return kSimpleRegion;
}

// The key is let go when it has been pressed: one of the two is enough to know.
void QtWindows::keybd_event(BYTE key, BYTE /*scanCode*/, DWORD flags, DWORD_PTR /*extra*/) {
    if (key == VK_OFF && (flags & KEYEVENTF_KEYUP) != 0) {
        screenOff_.SwitchOff();
    }
}

BOOL QtWindows::SHCreateMenuBar(SHMENUBARINFO* info) {
    if (info == nullptr || windows_.Find(info->hwndParent) == nullptr) {
        return FALSE;
    }
    const MenuResource* const menu = findMenu_(info->nToolBarId);
    if (menu == nullptr || (info->dwFlags & SHCMBF_HMENU) == 0) {
        return FALSE;
    }
    const Birth birth = {.handle = windows_.NewHandle(),
                         .parent = info->hwndParent,
                         .id = 0,
                         .style = WS_VISIBLE,
                         .text = {},
                         .place = {0, kScreenHeight - kMenuBarHeight, kScreenWidth, kScreenHeight},
                         .surface = &host_};
    windows_.Add(std::make_unique<MenuBar>(station_, birth, *menu));
    windows_.Find(birth.handle)->widget().show();
    info->hwndMB = birth.handle;
    return TRUE;
}

HWND QtWindows::CreateDialogIndirectParamW(HINSTANCE /*instance*/, const DLGTEMPLATE* dialog,
                                           HWND parent, DLGPROC procedure, LPARAM parameter) {
    if (dialog == nullptr || procedure == nullptr ||
        (parent != nullptr && windows_.Find(parent) == nullptr)) {
        return nullptr;
    }
    const Birth birth = {.handle = windows_.NewHandle(),
                         .parent = parent,
                         .id = 0,
                         .style = dialog->style,
                         .text = {},
                         .place = DialogPlace(*dialog, host_.fontMetrics()),
                         .surface = &host_};
    const ProgramTraits traits = {.procedure = procedure,
                                  .dialog = true,
                                  .topLevel = true,
                                  .hasOk = false,
                                  .background = Qt::white};
    windows_.Add(std::make_unique<ProgramWindow>(station_, birth, traits));
    windows_.Find(birth.handle)->widget().hide();
    windows_.Send(birth.handle, WM_INITDIALOG, 0, parameter);
    if (const Window* const made = windows_.Find(birth.handle);
        made != nullptr && (birth.style & WS_VISIBLE) != 0) {
        Open(*made);
    }
    return windows_.Find(birth.handle) == nullptr ? nullptr : birth.handle;
}

BOOL QtWindows::SHInitDialog(const SHINITDLGINFO* info) {
    ProgramWindow* const dialog = info == nullptr ? nullptr : FindProgramWindow(info->hDlg);
    if (dialog == nullptr || (info->dwMask & SHIDIM_FLAGS) == 0) {
        return FALSE;
    }
    if ((info->dwFlags & SHIDIF_DONEBUTTON) != 0) {
        dialog->GiveOk();
    }
    if ((info->dwFlags & SHIDIF_SIZEDLG) != 0) {
        const bool barThere = host_.findChild<QMenuBar*>() != nullptr;
        dialog->Place(QRect(0, kCaptionHeight, kScreenWidth,
                            kScreenHeight - kCaptionHeight - (barThere ? kMenuBarHeight : 0)));
    }
    fronts_.Refresh();
    return TRUE;
}

DWORD_PTR QtWindows::SHGetFileInfo(const WCHAR* path, DWORD /*attributes*/, SHFILEINFO* info,
                                   UINT /*size*/, UINT flags) {
    constexpr UINT wanted = SHGFI_SYSICONINDEX | SHGFI_SMALLICON;
    if (path == nullptr || info == nullptr || (flags & wanted) != wanted) {
        return 0;
    }
    info->iIcon = TextOf(path) == u"\\" ? kDeviceIcon : kFolderIcon;
    return kSmallIcons;
}

ProgramWindow* QtWindows::FindProgramWindow(HWND window) const {
    return dynamic_cast<ProgramWindow*>(windows_.Find(window));
}

void QtWindows::QueueTabStep(int step) {
    for (const Window* const child : windows_.ChildrenOf(fronts_.Front())) {
        if (dynamic_cast<const TabControl*>(child) != nullptr) {
            queue_.Post(child->handle(), kTabStep, 0, step);
        }
    }
}

// The program ends as it does by its own button, once its work is done.
void QtWindows::HeedSignals() {
    if (!signals_) {
        signals_.emplace([this] { EndRun(); });
    }
}

void QtWindows::EndRun() {
    boxes_.AnswerOpen();
    const HWND main = fronts_.Main();
    if (!ending_ && main != nullptr) {
        queue_.Post(main, WM_COMMAND, IDOK, 0);
    }
    ending_ = true;
}

}  // namespace platform::qt
