#include "platform/qt/qt_window_system.h"

#include <QEvent>
#include <QImage>
#include <QMenuBar>
#include <algorithm>

#include "platform/display/message_box_default_answer.h"
#include "platform/qt/base/handheld_style.h"
#include "platform/qt/controls/tab_control.h"
#include "platform/qt/controls/tree_control.h"
#include "platform/qt/desktop/toolkit_start.h"
#include "platform/qt/screen/menu_bar.h"
#include "platform/qt/screen/page_scroll_bar.h"

namespace platform::qt {

namespace {

constexpr DWORD_PTR kSmallIcons = 1;
constexpr int kSimpleRegion = 2;
constexpr int kPageOverlap = 18;

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
// What it stood on has it then, so that Tab goes on from there.
void GiveUpKeyboard(const QWidget& hidden) {
    const QWidget* const focus = hidden.window()->focusWidget();
    if (focus != nullptr && (focus == &hidden || hidden.isAncestorOf(focus))) {
        hidden.parentWidget()->setFocus(Qt::OtherFocusReason);
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

QtWindowSystem::QtWindowSystem(const WindowModuleParams& params,
                               std::unique_ptr<QApplication> application)
    : findMenu_(params.findMenu),
      answerUnseen_(params.answerUnseen),
      application_(std::move(application)),
      host_(QString::fromUtf8(params.title), params.isRehearsal,
            {.okPressed = [this] { queue_.Post(stack_.Front(), WM_COMMAND, IDOK, 0); },
             .closePressed = [this] { RequestExit(); },
             .tabKeyPressed = [this](int step) { QueueTabStep(step); },
             .pageKeyPressed = [this](Qt::Key key) { QueuePageScroll(key); }}),
      context_{windows_, queue_, host_},
      stack_(windows_, host_),
      closeWatch_(host_, [this] { RequestExit(); }) {
    new QuitWatch(*application_, queue_);  // the application's own
    if (const IconResource* const icon = params.findIcon(kIconResource)) {
        QApplication::setWindowIcon(IconOf(*icon));
    }
}

QtWindowSystem::~QtWindowSystem() = default;

void QtWindowSystem::ServeDesktop() {
    if (DisplayIsLost()) {
        return;  // the work goes on to its end
    }
    if (QGuiApplication::overrideCursor() == nullptr) {
        QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    }
    // Without the sockets: a signal becomes a message only when the program asks for one again.
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents |
                                    QEventLoop::ExcludeSocketNotifiers);
}

bool QtWindowSystem::WantsToTryAgain(const std::string& failure) {
    if (isSignalled_ || DisplayIsLost()) {
        return false;
    }
    QGuiApplication::restoreOverrideCursor();
    const QString text = QString::fromStdString(failure) +
                         QStringLiteral("\n\nIf you give up, what was changed is lost.");
    return boxes_.Show(&host_, text, QStringLiteral("Fennelbright"),
                       kTryAgainBox | MB_ICONEXCLAMATION) == kTryAgain;
}

WORD QtWindowSystem::RegisterClassW(const WNDCLASS* windowClass) {
    return windowClass != nullptr && classes_.Register(*windowClass) ? 1 : 0;
}

BOOL QtWindowSystem::UnregisterClassW(const WCHAR* className, HINSTANCE /*instance*/) {
    return className != nullptr && classes_.Unregister(className, windows_);
}

HWND QtWindowSystem::CreateWindowExW(DWORD extendedStyle, const WCHAR* className, const WCHAR* text,
                                     DWORD style, int x, int y, int width, int height, HWND parent,
                                     HMENU menu, HINSTANCE /*instance*/, void* /*parameter*/) {
    const Window* const above = windows_.Find(parent);
    const bool isChild = (style & (WS_CHILD | WS_POPUP)) == WS_CHILD;
    if (className == nullptr || (above == nullptr && (parent != nullptr || isChild))) {
        return nullptr;
    }
    const QString name = TextOf(className);
    const WindowClasses::Class* const made = classes_.Find(name);
    // A popup lies on the screen itself, so that the edges of its parent's page do not cut it.
    const bool onScreen = above == nullptr || (made != nullptr && (style & WS_POPUP) != 0);
    const CreateParams params = {
        .handle = windows_.NewHandle(),
        .parent = parent,
        .id = above == nullptr ? 0 : static_cast<int>(reinterpret_cast<std::intptr_t>(menu)),
        .style = style,
        .text = TextOf(text),
        .place =
            above == nullptr ? TopLevelPlace(x, y, width, height) : PlaceOf(x, y, width, height),
        .surface = onScreen ? &host_.handheld() : &above->surface()};
    if (made != nullptr) {
        classes_.NoteWindow(name, params.handle);
        return AddProgramWindow(params, extendedStyle, *made);
    }
    std::unique_ptr<Window> control =
        above == nullptr ? nullptr : MakeControl(name, context_, params);
    if (control == nullptr) {
        return nullptr;
    }
    control->widget().setVisible((style & WS_VISIBLE) != 0);
    windows_.Add(std::move(control));
    return params.handle;
}

HWND QtWindowSystem::AddProgramWindow(const CreateParams& params, DWORD extendedStyle,
                                      const WindowClasses::Class& made) {
    const ProgramTraits traits = {.procedure = made.procedure,
                                  .dialog = false,
                                  .topLevel = params.parent == nullptr,
                                  .hasOk = (extendedStyle & WS_EX_CAPTIONOKBTN) != 0,
                                  .background = BackgroundColor(made.background)};
    auto window = std::make_unique<ProgramWindow>(context_, params, traits);
    const Window& added = *window;
    windows_.Add(std::move(window));
    if ((params.style & WS_VISIBLE) != 0) {
        Open(added);
    }
    return params.handle;
}

BOOL QtWindowSystem::DestroyWindow(HWND window) {
    const bool destroyed = windows_.Destroy(window);
    stack_.Refresh();
    return destroyed;
}

BOOL QtWindowSystem::ShowWindow(HWND window, int command) {
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
    if (stack_.IsTopLevel(*found)) {
        stack_.Hide(*found);
    }
    return visible;
}

void QtWindowSystem::Open(const Window& window) {
    window.widget().show();
    if (stack_.IsTopLevel(window)) {
        stack_.Raise(window);
        host_.show();
        WatchSignals();
    } else if (window.widget().parentWidget() == &host_.handheld()) {
        window.widget().raise();
    } else {
        stack_.OfferKeyboard(window);
    }
}

BOOL QtWindowSystem::UpdateWindow(HWND window) {
    // Before the painting, during which nothing of the program may run.
    if (Window* const found = windows_.Find(window)) {
        found->PrepareToPaint();
        QCoreApplication::sendPostedEvents(&host_, QEvent::UpdateRequest);
        return TRUE;
    }
    return FALSE;
}

BOOL QtWindowSystem::GetClientRect(HWND window, RECT* rectangle) {
    const Window* const found = windows_.Find(window);
    if (found == nullptr || rectangle == nullptr) {
        return FALSE;
    }
    *rectangle = PlaceOf(0, 0, found->surface().width(), found->surface().height());
    return TRUE;
}

BOOL QtWindowSystem::GetWindowRect(HWND window, RECT* rectangle) {
    const Window* const found = windows_.Find(window);
    if (found == nullptr || rectangle == nullptr) {
        return FALSE;
    }
    const QPoint corner = found->widget().mapTo(&host_.handheld(), QPoint(0, 0));
    *rectangle = PlaceOf(corner.x(), corner.y(), found->widget().width(), found->widget().height());
    return TRUE;
}

BOOL QtWindowSystem::MoveWindow(HWND window, int x, int y, int width, int height,
                                BOOL /*repaint*/) {
    Window* const found = windows_.Find(window);
    if (found == nullptr) {
        return FALSE;
    }
    found->Place(QRect(x, y, width, height));
    return TRUE;
}

// Before the desktop makes the host's window the active one, only that window knows what has focus.
HWND QtWindowSystem::SetFocus(HWND window) {
    const Window* const found = windows_.Find(window);
    if (found == nullptr) {
        return nullptr;
    }
    const QWidget* const before = found->widget().window()->focusWidget();
    const HWND previous = before == nullptr ? nullptr : HandleOf(*before);
    found->widget().setFocus(Qt::OtherFocusReason);
    if (stack_.IsTopLevel(*found) && !found->widget().isHidden()) {
        stack_.Raise(*found);
        stack_.FocusLoneOk();
    }
    return previous;
}

BOOL QtWindowSystem::SetWindowTextW(HWND window, const WCHAR* text) {
    if (windows_.Find(window) == nullptr) {
        return FALSE;
    }
    windows_.Send(window, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text));
    stack_.Refresh();
    return TRUE;
}

BOOL QtWindowSystem::GetMessageW(MSG* message, HWND /*window*/, UINT /*lowest*/, UINT /*highest*/) {
    if (message == nullptr) {
        return -1;
    }
    while (true) {
        // Here alone no handler of the toolkit is at work that might still need what it has given
        // up.
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        MSG next;
        while (queue_.Pop(next)) {
            if (HasReceiver(next)) {
                *message = next;
                return next.message != WM_QUIT;
            }
        }
        if (DisplayIsLost() && !ending_ && stack_.Main() != nullptr) {
            RequestExit();
            continue;
        }
        QGuiApplication::restoreOverrideCursor();
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
}

// A window can be destroyed while messages to it, or of it, are queued; they go with it.
bool QtWindowSystem::HasReceiver(const MSG& message) const {
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
BOOL QtWindowSystem::TranslateMessage(const MSG* /*message*/) {
    return FALSE;
}

LRESULT QtWindowSystem::DispatchMessageW(const MSG* message) {
    Window* const window = message == nullptr ? nullptr : windows_.Find(message->hwnd);
    if (window == nullptr) {
        return 0;
    }
    if (message->message >= kFirstOwnMessage) {
        // A copy, because the window may go while it is at work, and the message with it.
        window->CarryOut(MSG(*message));
        return 0;
    }
    return window->Receive(message->message, message->wParam, message->lParam);
}

LRESULT QtWindowSystem::DefWindowProcW(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    Window* const found = windows_.Find(window);
    return found == nullptr ? 0 : found->HandleMessage(message, wParam, lParam);
}

LRESULT QtWindowSystem::SendMessageW(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    return windows_.Send(window, message, wParam, lParam);
}

LRESULT QtWindowSystem::SendDlgItemMessageW(HWND parent, int id, UINT message, WPARAM wParam,
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

int QtWindowSystem::MessageBoxW(HWND /*owner*/, const WCHAR* text, const WCHAR* caption,
                                UINT type) {
    WatchSignals();
    if (ending_ || DisplayIsLost()) {
        return answerUnseen_(text, caption, type);
    }
    QGuiApplication::restoreOverrideCursor();
    return boxes_.Show(&host_, TextOf(text), TextOf(caption), type);
}

BOOL QtWindowSystem::GetScrollInfo(HWND window, int bar, SCROLLINFO* info) {
    const ProgramWindow* const found = FindProgramWindow(window);
    if (found == nullptr || found->Range() == nullptr || bar != SB_VERT || info == nullptr) {
        return FALSE;
    }
    found->Range()->Get(*info);
    return TRUE;
}

int QtWindowSystem::SetScrollInfo(HWND window, int bar, const SCROLLINFO* info, BOOL /*redraw*/) {
    ProgramWindow* const found = FindProgramWindow(window);
    if (found == nullptr || found->Range() == nullptr || bar != SB_VERT || info == nullptr) {
        return 0;
    }
    return found->SetRange(*info);
}

int QtWindowSystem::ScrollWindowEx(HWND window, int dx, int dy, const RECT* scroll,
                                   const RECT* /*clip*/, HRGN /*updateRegion*/, RECT* /*update*/,
                                   UINT flags) {
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
void QtWindowSystem::keybd_event(BYTE key, BYTE /*scanCode*/, DWORD flags, DWORD_PTR /*extra*/) {
    if (key == VK_OFF && (flags & KEYEVENTF_KEYUP) != 0) {
        screenOff_.SwitchOff();
    }
}

BOOL QtWindowSystem::SHCreateMenuBar(SHMENUBARINFO* info) {
    if (info == nullptr || windows_.Find(info->hwndParent) == nullptr) {
        return FALSE;
    }
    const MenuResource* const menu = findMenu_(info->nToolBarId);
    if (menu == nullptr || (info->dwFlags & SHCMBF_HMENU) == 0) {
        return FALSE;
    }
    const CreateParams params = {
        .handle = windows_.NewHandle(),
        .parent = info->hwndParent,
        .id = 0,
        .style = WS_VISIBLE,
        .text = {},
        .place = {0, kScreenHeight - kMenuBarHeight, kScreenWidth, kScreenHeight},
        .surface = &host_.handheld()};
    windows_.Add(std::make_unique<MenuBar>(context_, params, *menu));
    windows_.Find(params.handle)->widget().show();
    info->hwndMB = params.handle;
    return TRUE;
}

HWND QtWindowSystem::CreateDialogIndirectParamW(HINSTANCE /*instance*/, const DLGTEMPLATE* dialog,
                                                HWND parent, DLGPROC procedure, LPARAM parameter) {
    if (dialog == nullptr || procedure == nullptr ||
        (parent != nullptr && windows_.Find(parent) == nullptr)) {
        return nullptr;
    }
    const CreateParams params = {.handle = windows_.NewHandle(),
                                 .parent = parent,
                                 .id = 0,
                                 .style = dialog->style,
                                 .text = {},
                                 .place = DialogPlace(*dialog, host_.fontMetrics()),
                                 .surface = &host_.handheld()};
    const ProgramTraits traits = {.procedure = procedure,
                                  .dialog = true,
                                  .topLevel = true,
                                  .hasOk = false,
                                  .background = Qt::white};
    windows_.Add(std::make_unique<ProgramWindow>(context_, params, traits));
    // Not seen before its procedure has made its controls; that may also destroy it.
    windows_.Find(params.handle)->widget().hide();
    windows_.Send(params.handle, WM_INITDIALOG, 0, parameter);
    if (const Window* const made = windows_.Find(params.handle);
        made != nullptr && (params.style & WS_VISIBLE) != 0) {
        Open(*made);
    }
    return windows_.Find(params.handle) == nullptr ? nullptr : params.handle;
}

BOOL QtWindowSystem::SHInitDialog(const SHINITDLGINFO* info) {
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
    stack_.Refresh();
    return TRUE;
}

DWORD_PTR QtWindowSystem::SHGetFileInfo(const WCHAR* path, DWORD /*attributes*/, SHFILEINFO* info,
                                        UINT /*size*/, UINT flags) {
    constexpr UINT wanted = SHGFI_SYSICONINDEX | SHGFI_SMALLICON;
    if (path == nullptr || info == nullptr || (flags & wanted) != wanted) {
        return 0;
    }
    info->iIcon = TextOf(path) == u"\\" ? kDeviceIcon : kFolderIcon;
    return kSmallIcons;
}

ProgramWindow* QtWindowSystem::FindProgramWindow(HWND window) const {
    return dynamic_cast<ProgramWindow*>(windows_.Find(window));
}

void QtWindowSystem::QueueTabStep(int step) {
    for (const Window* const child : windows_.ChildrenOf(stack_.Front())) {
        if (dynamic_cast<const TabControl*>(child) != nullptr) {
            queue_.Post(child->handle(), kTabStep, 0, step);
        }
    }
}

// A row of what was in view stays in view.
void QtWindowSystem::QueuePageScroll(Qt::Key key) {
    for (const QScrollBar* const each : host_.findChildren<QScrollBar*>()) {
        const auto* const bar = dynamic_cast<const PageScrollBar*>(each);
        if (bar == nullptr || !bar->isVisible() || !bar->isEnabled()) {
            continue;
        }
        const bool isWhole = key == Qt::Key_Home || key == Qt::Key_End;
        const int pixels = isWhole ? bar->maximum() - bar->minimum() : bar->height() - kPageOverlap;
        const bool isUp = key == Qt::Key_Home || key == Qt::Key_PageUp;
        queue_.Post(HandleOf(*bar->parentWidget()), kScrollBy, 0, isUp ? -pixels : pixels);
    }
}

// The program ends as it does by its own button, once its work is done.
void QtWindowSystem::WatchSignals() {
    if (!signals_) {
        signals_.emplace([this] {
            isSignalled_ = true;
            RequestExit();
        });
    }
}

void QtWindowSystem::RequestExit() {
    boxes_.AnswerOpen();
    const HWND main = stack_.Main();
    if (!ending_ && main != nullptr) {
        queue_.Post(main, WM_COMMAND, IDOK, 0);
    }
    ending_ = true;
}

}  // namespace platform::qt
