#pragma once

#include <QString>
#include <QWidget>
#include <memory>

#include "core/window_operations.h"

namespace platform::qt {

class HostWindow;
class MessageQueue;
class WindowTable;

// What every window works with. All of it outlives the windows.
struct WindowContext {
    WindowTable& windows;
    MessageQueue& queue;
    HostWindow& host;
};

// What a window is made from.
struct CreateParams {
    HWND handle;
    HWND parent;
    int id;
    DWORD style;
    QString text;
    RECT place;        // on its parent, or on the screen
    QWidget* surface;  // of the parent, or the screen
};

// A window of the program: its widget, and what it does with messages. Its methods are called from
// the program's operations alone, never by the toolkit.
class Window {
  public:
    Window(WindowContext& context, const CreateParams& params);
    virtual ~Window();
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;

    HWND handle() const { return handle_; }
    HWND parent() const { return parent_; }
    int id() const { return id_; }
    QWidget& widget() const { return *widget_; }

    // The client area, on which the children stand.
    virtual QWidget& surface() const { return *widget_; }

    // Hands a message to the procedure, if there is one, else to Answer. The window may be gone
    // afterwards.
    virtual LRESULT Receive(UINT message, WPARAM wParam, LPARAM lParam);

    // What the window itself does with a message. The window may be gone afterwards.
    virtual LRESULT HandleMessage(UINT message, WPARAM wParam, LPARAM lParam);

    // Carries out what the user did: a message from kFirstOwnMessage on. The window may be gone
    // afterwards.
    virtual void CarryOut(const MSG& message);

    // Does what has to be done before the window is painted. The window may be gone afterwards.
    virtual void PrepareToPaint() {}

    virtual QString Text() const { return text_; }
    virtual void SetText(const QString& text) { text_ = text; }
    virtual void Place(const QRect& place) { widget_->setGeometry(place); }

    // The text by which the user knows the control that is created next, and one that is created
    // later; empty if none.
    virtual QString LabelForNext() const { return {}; }
    virtual QString LabelForLater() const { return {}; }

    // The keyboard has come to the window or left it. Called by the toolkit: it may only queue.
    virtual void FocusChanged(bool gained, Qt::FocusReason reason);

  protected:
    // Takes over the widget, which must stand on the birth's surface, and gives it its place.
    void Adopt(std::unique_ptr<QWidget> widget, const CreateParams& params);

    // Notifies the parent by WM_COMMAND, now or through the queue. A control without an ID notifies
    // nothing.
    void SendCommand(WORD code);
    void QueueCommand(WORD code);

    // Queues a message of its own.
    void QueueToSelf(UINT message, WPARAM wParam, LPARAM lParam);

    WindowContext& context() const { return context_; }

  private:
    WindowContext& context_;
    HWND handle_;
    HWND parent_;
    int id_;
    QString text_;
    std::unique_ptr<QWidget> widget_;
    std::unique_ptr<QObject> focusWatch_;
};

// The window that a widget belongs to; null when it is none's.
HWND HandleOf(const QWidget& widget);

// Copies a text as WM_GETTEXT does and returns how many characters it has put there.
LRESULT CopyText(const QString& text, WPARAM room, LPARAM buffer);

// The program's text, each unit of it as it is; empty for null.
inline QString TextOf(const WCHAR* text) {
    return text == nullptr ? QString() : QString(reinterpret_cast<const QChar*>(text));
}

// The text of a message's argument.
inline QString TextOf(LPARAM argument) {
    return TextOf(reinterpret_cast<const WCHAR*>(argument));  // NOLINT(performance-no-int-to-ptr)
}

}  // namespace platform::qt
