#include "platform/qt/screen/message_box.h"

#include <QDialog>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QStyle>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "platform/display/message_box_default_answer.h"
#include "platform/qt/base/escaped_display_text.h"
#include "platform/qt/base/handheld_style.h"

namespace platform::qt {

namespace {

constexpr UINT kButtonsMask = 0xF;
constexpr UINT kIconMask = 0xF0;
constexpr int kIconSide = 24;
constexpr int kMargin = 8;
constexpr int kLongestWord = 16;  // that is not broken
constexpr QChar kPlaceToBreak(0x200B);
constexpr int kTallestText = kScreenHeight * 3 / 4;
constexpr int kButtonsRoom = 56;  // with the desktop's own title

struct Answer {
    UINT type;  // of the box
    const char* text;
    int answer;
};

constexpr Answer kAnswers[] = {
    {MB_OK, "OK", IDOK},
    {MB_YESNO, "Yes", IDYES},
    {MB_YESNO, "No", IDNO},
    {kTryAgainBox, "Try again", kTryAgain},
    {kTryAgainBox, "Give up", IDOK},
};

// Long words with places to break them at: a line would be cut where it has none.
QString Breakable(const QString& text) {
    QString breakable;
    int length = 0;
    for (const QChar unit : text) {
        length = unit.isSpace() ? 0 : length + 1;
        if (length > kLongestWord && !unit.isLowSurrogate()) {
            breakable += kPlaceToBreak;
        }
        breakable += unit;
    }
    return breakable;
}

// A box that is closed is answered with its safe answer.
class Box : public QDialog {
  public:
    Box(QWidget* over, const QString& text, const QString& caption, UINT type)
        : QDialog(over, Qt::Dialog | Qt::WindowTitleHint | Qt::WindowCloseButtonHint),
          safeAnswer_(UnattendedAnswer(type)) {
        setWindowTitle(ShownText(caption));
        setAccessibleDescription(ShownLines(text));
        setModal(true);
        installEventFilter(this);
        auto* const column = new QVBoxLayout(this);
        column->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
        column->setSizeConstraint(QLayout::SetFixedSize);
        AddText(*column, text, type);
        auto* const row = new QHBoxLayout;
        column->addLayout(row);
        row->addStretch();
        for (const Answer& answer : kAnswers) {
            if (answer.type == (type & kButtonsMask)) {
                AddButton(*row, QString::fromLatin1(answer.text), answer.answer);
            }
        }
        row->addStretch();
    }

    void reject() override { done(safeAnswer_); }

    // A key that is held down since before the box came up has not answered it.
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::KeyPress || event->type() == QEvent::KeyRelease) {
            return IsRepeated(static_cast<const QKeyEvent&>(*event));
        }
        return QDialog::eventFilter(watched, event);
    }

  private:
    // The toolkit does not see it on a busy machine: then the key is let go and pressed again in
    // the same millisecond.
    bool IsRepeated(const QKeyEvent& key) {
        if (key.type() == QEvent::KeyRelease) {
            letGo_ = {key.key(), key.timestamp()};
            return false;
        }
        return key.isAutoRepeat() ||
               (key.timestamp() != 0 && letGo_ == std::pair(key.key(), key.timestamp()));
    }

    void AddText(QVBoxLayout& column, const QString& text, UINT type) {
        auto* const row = new QHBoxLayout;
        column.addLayout(row);
        const QSize display = screen()->availableSize();
        int room = std::min(kScreenWidth, display.width()) - 4 * kMargin;
        if ((type & kIconMask) == MB_ICONEXCLAMATION) {
            auto* const icon = new QLabel;
            icon->setPixmap(style()->standardIcon(QStyle::SP_MessageBoxWarning).pixmap(kIconSide));
            row->addWidget(icon, 0, Qt::AlignTop);
            room -= kIconSide + kMargin;
        }
        auto* const label = new QLabel(Breakable(ShownLines(text)));
        label->setObjectName(QStringLiteral("boxText"));
        label->setAccessibleName(ShownLines(text));
        label->setTextFormat(Qt::PlainText);
        label->setWordWrap(true);
        label->setFixedSize(room, label->heightForWidth(room));
        const int tallest = std::min(kTallestText, display.height() - kButtonsRoom);
        row->addWidget(label->height() > tallest ? NewScroller(label, tallest) : label);
    }

    // The buttons stay on the desktop whatever is said.
    static QWidget* NewScroller(QLabel* label, int height) {
        auto* const area = new QScrollArea;
        area->setFrameShape(QFrame::NoFrame);
        area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        area->setFixedSize(label->width() + kScrollBarWidth, height);
        area->setAccessibleName(label->accessibleName());
        area->setWidget(label);
        return area;
    }

    void AddButton(QHBoxLayout& row, const QString& text, int answer) {
        auto* const button = new QPushButton(text);
        button->setObjectName(QStringLiteral("answer%1").arg(answer));
        button->setMinimumSize(56, 20);
        button->installEventFilter(this);
        connect(button, &QPushButton::clicked, this, [this, answer] { done(answer); });
        row.addWidget(button);
    }

    int safeAnswer_;
    std::pair<int, quint64> letGo_{0, 0};  // the last key that was, and when
};

}  // namespace

int MessageBoxes::Show(QWidget* over, const QString& text, const QString& caption, UINT type) {
    Box box(over != nullptr && over->isVisible() ? over : nullptr, text, caption, type);
    open_ = &box;
    const int answer = box.exec();
    open_ = nullptr;
    if (over != nullptr) {
        over->activateWindow();  // without a window manager, nothing else gives the keyboard back
    }
    return answer;
}

void MessageBoxes::AnswerOpen() {
    if (open_ != nullptr) {
        open_->reject();
    }
}

}  // namespace platform::qt
