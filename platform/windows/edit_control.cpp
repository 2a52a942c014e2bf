#include "platform/windows/edit_control.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QLineEdit>

#include "core/wide_text.h"
#include "platform/windows/window_table.h"

namespace platform::windows {

namespace {

// A pasted text may hold line ends, or even a zero at which it would end, and may end at the limit
// in half a character.
QString WithoutControls(QString text) {
    text.removeIf([](QChar unit) { return unit.category() == QChar::Other_Control; });
    if (!text.isEmpty() && text.back().isHighSurrogate()) {
        text.chop(1);
    }
    return text;
}

// What its user sees is what the program gets.
class Line : public QLineEdit {
  public:
    Line(const QString& text, QWidget* parent) : QLineEdit(text, parent) {
        connect(this, &QLineEdit::textEdited, this, &Line::DropControls);
    }

  protected:
    // The toolkit would replace what is selected by nothing.
    void keyPressEvent(QKeyEvent* event) override {
        if (!event->matches(QKeySequence::Paste) ||
            !WithoutControls(QGuiApplication::clipboard()->text()).isEmpty()) {
            QLineEdit::keyPressEvent(event);
        }
    }

  private:
    void DropControls(const QString& text) {
        const QString kept = WithoutControls(text);
        if (kept != text) {
            const auto place = WithoutControls(text.left(cursorPosition())).size();
            selectAll();
            insert(kept);
            setCursorPosition(static_cast<int>(place));
        }
    }
};

}  // namespace

EditControl::EditControl(Station& station, const Birth& birth) : Window(station, birth) {
    auto line = std::make_unique<Line>(birth.text, birth.surface);
    line_ = line.get();
    // More than the program can take in would be cut without a word.
    line_->setMaxLength(static_cast<int>(kTextCapacity) - 1);
    line_->setFrame((birth.style & WS_BORDER) != 0);
    QObject::connect(line_, &QLineEdit::textEdited, line_, [this] {
        QueueCommand(EN_UPDATE);
        QueueCommand(EN_CHANGE);
    });
    Adopt(std::move(line), birth);
}

// A text that the program sets is told of at once, as the change of a text that it is.
LRESULT EditControl::Answer(UINT message, WPARAM wParam, LPARAM lParam) {
    if (message != WM_SETTEXT) {
        return Window::Answer(message, wParam, lParam);
    }
    const WindowTable& windows = station().windows;
    const HWND self = handle();
    SetText(TextOf(lParam));
    SendCommand(EN_UPDATE);
    if (windows.Find(self) != nullptr) {
        SendCommand(EN_CHANGE);
    }
    return TRUE;
}

QString EditControl::Text() const {
    return line_->text();
}

void EditControl::SetText(const QString& text) {
    line_->setText(text);
    line_->setCursorPosition(0);
}

void EditControl::FocusChanged(bool gained, Qt::FocusReason reason) {
    Window::FocusChanged(gained, reason);
    QueueCommand(gained ? EN_SETFOCUS : EN_KILLFOCUS);
}

}  // namespace platform::windows
