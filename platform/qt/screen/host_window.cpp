#include "platform/qt/screen/host_window.h"

#include <QCloseEvent>
#include <QFontInfo>
#include <QKeyEvent>
#include <QLabel>
#include <QScreen>
#include <algorithm>
#include <cstdio>
#include <utility>

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
const QColor kAround(0x50, 0x50, 0x50);
const QColor kRehearsalAround(0xFF, 0xC0, 0x30);
constexpr int kBannerHeight = 20;
constexpr int kFrame = 5;

QLabel* NewBanner(QWidget* parent) {
    auto* const banner = new QLabel(QStringLiteral("Rehearsal: nothing is changed"), parent);
    banner->setAlignment(Qt::AlignCenter);
    QFont font = banner->font();
    font.setBold(true);
    banner->setFont(font);
    return banner;
}

QString TitleOf(const QString& title, bool isRehearsal) {
    return TitleText(title) + QStringLiteral(" \u2013 Fennelbright") +
           (isRehearsal ? QStringLiteral(" (rehearsal)") : QString());
}

QWidget* NewHandheld(QWidget* parent) {
    auto* const handheld = new QWidget(parent);
    handheld->resize(kScreenWidth, kScreenHeight);
    handheld->setAutoFillBackground(true);
    return handheld;
}

// The toolkit's measures are the handheld's.
void ReportSmallDisplay(QSize display) {
    if (display.width() < kScreenWidth || display.height() < kScreenHeight) {
        std::fprintf(stderr,
                     "fennelbright: the display has room for %d by %d pixels of the handheld's "
                     "%d by %d at this scale; the rest is out of view\n",
                     std::min(display.width(), kScreenWidth),
                     std::min(display.height(), kScreenHeight), kScreenWidth, kScreenHeight);
    }
}

// Another typeface is wider, or narrower than it need be.
void ReportMissingTypeface(const QFont& font) {
    if (QFontInfo(font).family() != QLatin1String(kFontFamily)) {
        std::fprintf(stderr,
                     "fennelbright: the typeface \"%s\" is missing, and texts may be cut off; it "
                     "is in the package %s\n",
                     kFontFamily, kFontPackage);
    }
}

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

HostWindow::HostWindow(const QString& title, bool isRehearsal, HostEvents events)
    : events_(std::move(events)),
      banner_(isRehearsal ? NewBanner(this) : nullptr),
      handheld_(NewHandheld(this)),
      title_(NewTitle(handheld_)),
      ok_(NewOk(handheld_)) {
    setWindowTitle(TitleOf(title, isRehearsal));
    setPalette(isRehearsal ? kRehearsalAround : kAround);
    setFixedSize(isRehearsal ? handheld_->size() + QSize(2 * kFrame, kBannerHeight + kFrame)
                             : handheld_->size());
    handheld_->setPalette(QApplication::palette());
    connect(ok_, &QPushButton::clicked, this, [this] { events_.okPressed(); });
    SetCaption({}, false);
}

void HostWindow::SetCaption(const QString& text, bool hasOk) {
    title_->setText(text);
    ok_->setVisible(hasOk);
}

void HostWindow::RaiseMenuBar() {
    if (auto* const bar = handheld_->findChild<QMenuBar*>(QString(), Qt::FindDirectChildrenOnly)) {
        bar->raise();
    }
}

void HostWindow::closeEvent(QCloseEvent* event) {
    event->ignore();
    events_.closePressed();
}

// Where there is less room than the screen takes up, its beginning is in view.
void HostWindow::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    const int above = banner_ != nullptr ? kBannerHeight : 0;
    handheld_->move(std::max(0, (width() - kScreenWidth) / 2),
                    std::max(above, (height() - kScreenHeight) / 2));
    if (banner_ != nullptr) {
        banner_->setGeometry(0, handheld_->y() - above, width(), above);
    }
}

void HostWindow::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    if (!std::exchange(isShown_, true)) {
        ReportSmallDisplay(screen()->size());
        ReportMissingTypeface(font());
    }
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
