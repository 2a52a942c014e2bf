#include "platform/qt/screen/host_window.h"

#include <QCloseEvent>
#include <QKeyEvent>
#include <QLabel>

#include "platform/qt/base/escaped_display_text.h"
#include "platform/qt/base/handheld_style.h"
#include "platform/qt/base/key_groups.h"
#include "platform/qt/base/push_button.h"

namespace platform::qt {

namespace {

constexpr int kOkWidth = 34;
constexpr int kOkHeight = 20;
constexpr int kMargin = 3;

const QColor kCaptionColor(0x1F, 0x4F, 0x8F);

QLabel* NewTitle(QWidget* parent) {
    auto* const title = new QLabel(parent);
    title->setGeometry(0, 0, kScreenWidth, kCaptionHeight);
    title->setTextFormat(Qt::PlainText);
    title->setMargin(2 * kMargin);
    QPalette colors = title->palette();
    colors.setColor(QPalette::Window, kCaptionColor);
    colors.setColor(QPalette::WindowText, Qt::white);
    title->setPalette(colors);
    title->setAutoFillBackground(true);
    QFont font = title->font();
    font.setBold(true);
    title->setFont(font);
    return title;
}

QPushButton* NewOk(QWidget* parent) {
    auto* const ok = new PushButton(QStringLiteral("OK"), parent);
    ok->setGeometry(kScreenWidth - kOkWidth - kMargin, kMargin, kOkWidth, kOkHeight);
    ok->setFocusPolicy(Qt::TabFocus);
    ok->setObjectName(QStringLiteral("captionOk"));
    return ok;
}

}  // namespace

HostWindow::HostWindow(const QString& title, HostEvents events)
    : events_(std::move(events)), title_(NewTitle(this)), ok_(NewOk(this)) {
    setWindowTitle(TitleText(title));
    setFixedSize(kScreenWidth, kScreenHeight);
    connect(ok_, &QPushButton::clicked, this, [this] { events_.okPressed(); });
    SetCaption({}, false);
}

void HostWindow::SetCaption(const QString& text, bool hasOk) {
    title_->setText(text);
    ok_->setVisible(hasOk);
}

void HostWindow::RaiseMenuBar() {
    if (auto* const bar = findChild<QMenuBar*>(QString(), Qt::FindDirectChildrenOnly)) {
        bar->raise();
    }
}

void HostWindow::closeEvent(QCloseEvent* event) {
    event->ignore();
    events_.closePressed();
}

// What arrives here, no control wanted.
void HostWindow::keyPressEvent(QKeyEvent* event) {
    const bool control = (event->modifiers() & Qt::ControlModifier) != 0;
    if (event->key() == Qt::Key_F10) {
        auto* const bar = findChild<QMenuBar*>();
        if (bar != nullptr && !bar->actions().isEmpty()) {
            bar->setActiveAction(bar->actions().first());
        }
    } else if (control && event->key() == Qt::Key_Tab) {
        events_.tabKeyPressed(1);
    } else if (control && event->key() == Qt::Key_Backtab) {
        events_.tabKeyPressed(-1);
    } else if (IsPageKey(*event)) {
        events_.pageKeyPressed(static_cast<Qt::Key>(event->key()));
    } else {
        event->ignore();
    }
}

}  // namespace platform::qt
