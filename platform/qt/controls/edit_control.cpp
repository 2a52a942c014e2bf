#include "platform/qt/controls/edit_control.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <algorithm>

#include "core/wide_text.h"
#include "platform/qt/base/escaped_display_text.h"
#include "platform/qt/base/window_table.h"

namespace platform::qt {

namespace {

constexpr qsizetype kRoom = kTextCapacity - 1;

bool EndsLine(QChar unit) {
    return unit == u'\n' || unit == u'\r' || unit == QChar::LineSeparator ||
           unit == QChar::ParagraphSeparator;
}

QString FirstLine(const QString& text) {
    return text.left(std::ranges::find_if(text, EndsLine) - text.begin());
}

// A pasted text may hold tabs, or even a zero at which it would end.
QString WithoutControls(QString text) {
    return text.removeIf([](QChar unit) { return unit.category() == QChar::Other_Control; });
}

// What the program can take in of a text that was typed, which may end there in half a character.
QString Typed(const QString& escaped) {
    QString text = TrueText(WithoutControls(escaped));
    if (text.size() > kRoom) {
        text.truncate(text[kRoom - 1].isHighSurrogate() ? kRoom - 1 : kRoom);
    }
    return text;
}

// What its user sees is what the program gets.
class Line : public QLineEdit {
  public:
    Line(const QString& text, QWidget* parent) : QLineEdit(EscapedText(text), parent) {
        connect(this, &QLineEdit::textEdited, this, &Line::Correct);
    }

  protected:
    // The toolkit would replace what is selected by nothing.
    void keyPressEvent(QKeyEvent* event) override {
        if (!event->matches(QKeySequence::Paste) ||
            !WithoutControls(FirstLine(QGuiApplication::clipboard()->text())).isEmpty()) {
            QLineEdit::keyPressEvent(event);
        }
    }

  private:
    // The cursor stands at the end of what was pasted.
    void Correct(const QString& text) {
        const QString before = FirstLine(text.left(cursorPosition()));
        const QString kept = EscapedText(Typed(before + text.mid(cursorPosition())));
        if (kept != text) {
            const auto place = EscapedText(Typed(before)).size();
            selectAll();
            insert(kept);
            setCursorPosition(static_cast<int>(place));
        }
    }
};

}  // namespace

EditControl::EditControl(WindowContext& context, const CreateParams& params)
    : Window(context, params) {
    auto line = std::make_unique<Line>(params.text, params.surface);
    line_ = line.get();
    line_->setFrame((params.style & WS_BORDER) != 0);
    QObject::connect(line_, &QLineEdit::textEdited, line_, [this] {
        QueueCommand(EN_UPDATE);
        QueueCommand(EN_CHANGE);
    });
    Adopt(std::move(line), params);
}

// A text that the program sets is reported at once, because it is a change of the text.
LRESULT EditControl::HandleMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    if (message != WM_SETTEXT) {
        return Window::HandleMessage(message, wParam, lParam);
    }
    const WindowTable& windows = context().windows;
    const HWND self = handle();
    SetText(TextOf(lParam));
    SendCommand(EN_UPDATE);
    if (windows.Find(self) != nullptr) {
        SendCommand(EN_CHANGE);
    }
    return TRUE;
}

QString EditControl::Text() const {
    return TrueText(line_->text());
}

void EditControl::SetText(const QString& text) {
    line_->setText(EscapedText(text));
    line_->setCursorPosition(0);
}

void EditControl::FocusChanged(bool gained, Qt::FocusReason reason) {
    Window::FocusChanged(gained, reason);
    QueueCommand(gained ? EN_SETFOCUS : EN_KILLFOCUS);
}

}  // namespace platform::qt
