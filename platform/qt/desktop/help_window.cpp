#include "platform/qt/desktop/help_window.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QShortcut>
#include <QStringDecoder>
#include <QUrl>
#include <QVBoxLayout>

#include "platform/qt/base/escaped_display_text.h"
#include "platform/qt/desktop/help_browser.h"

namespace platform::qt {

namespace {

constexpr QSize kWindowSize(340, 420);
constexpr int kMargin = 4;

}  // namespace

QString PageText(QByteArrayView bytes) {
    QStringDecoder decoder(QStringDecoder::Utf8);
    const QString text = decoder(bytes);
    return decoder.hasError() ? QString::fromLatin1(bytes) : text;
}

HelpWindow::HelpWindow(const QString& page, const QString& place)
    : place_(place), page_(new HelpBrowser(this)) {
    page_->ShowPage(page);
    const QString title = page_->documentTitle();
    setWindowTitle(title.isEmpty() ? QStringLiteral("Help") : TitleText(title));
    AddControls();
    AddKeys();
    resize(kWindowSize);
    page_->setFocus();
}

void HelpWindow::AddControls() {
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    column->setSpacing(kMargin);
    auto* const row = new QHBoxLayout;
    column->addLayout(row);
    back_ = new QPushButton(QStringLiteral("Back"));
    back_->setEnabled(false);
    QPalette colors = back_->palette();
    colors.setColor(QPalette::Disabled, QPalette::ButtonText, Qt::gray);
    back_->setPalette(colors);
    auto* const label = new QLabel(QStringLiteral("Find:"));
    wanted_ = new QLineEdit;
    wanted_->setAccessibleName(QStringLiteral("Find"));
    label->setBuddy(wanted_);
    auto* const find = new QPushButton(QStringLiteral("Find next"));
    answer_ = new QLabel;
    answer_->setTextFormat(Qt::PlainText);
    for (QWidget* const widget : {static_cast<QWidget*>(back_), static_cast<QWidget*>(label),
                                  static_cast<QWidget*>(wanted_), static_cast<QWidget*>(find)}) {
        row->addWidget(widget);
    }
    column->addWidget(answer_);
    column->addWidget(page_);
    answer_->hide();
    connect(back_, &QPushButton::clicked, this, [this] { GoBack(); });
    connect(find, &QPushButton::clicked, this, [this] { Find(); });
    connect(wanted_, &QLineEdit::returnPressed, this, [this] { Find(); });
    connect(page_, &QTextBrowser::anchorClicked, this, [this](const QUrl& link) { Follow(link); });
}

void HelpWindow::AddKeys() {
    const struct {
        QKeySequence keys;
        std::function<void()> carryOut;
    } rows[] = {
        {QKeySequence(Qt::ALT | Qt::Key_Left), [this] { GoBack(); }},
        {QKeySequence(Qt::CTRL | Qt::Key_F),
         [this] { wanted_->setFocus(Qt::ShortcutFocusReason); }},
        {QKeySequence(Qt::Key_F3), [this] { Find(); }},
        {QKeySequence(Qt::CTRL | Qt::Key_W), [this] { close(); }},
        {QKeySequence(Qt::Key_Escape), [this] { close(); }},
    };
    for (const auto& row : rows) {
        connect(new QShortcut(row.keys, this), &QShortcut::activated, this, row.carryOut);
    }
}

// Only now the page is as wide as it will be.
void HelpWindow::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    GoTo(place_);
}

void HelpWindow::GoTo(const QString& place) {
    page_->scrollToAnchor(place);
}

void HelpWindow::Follow(const QUrl& link) {
    if (!link.hasFragment()) {
        return;
    }
    places_.push_back(page_->verticalScrollBar()->value());
    back_->setEnabled(true);
    GoTo(link.fragment(QUrl::FullyDecoded));
}

void HelpWindow::GoBack() {
    if (!places_.empty()) {
        page_->verticalScrollBar()->setValue(places_.back());
        places_.pop_back();
        back_->setEnabled(!places_.empty());
    }
}

// From the beginning again after the last place.
void HelpWindow::Find() {
    const QString wanted = wanted_->text();
    if (wanted.isEmpty() || page_->find(wanted)) {
        return Answer({});
    }
    const QTextCursor before = page_->textCursor();
    page_->moveCursor(QTextCursor::Start);
    if (page_->find(wanted)) {
        return Answer(QStringLiteral("No more \"%1\" below: from the top again").arg(wanted));
    }
    page_->setTextCursor(before);
    Answer(QStringLiteral("\"%1\" is not on this page").arg(wanted));
}

// Beside the box, and with it for who cannot see the window and has the keyboard in the box.
void HelpWindow::Answer(const QString& text) {
    wanted_->setAccessibleDescription(text);
    answer_->setText(text);
    answer_->setVisible(!text.isEmpty());
}

}  // namespace platform::qt
