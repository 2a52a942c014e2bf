#include "platform/qt/desktop/help_window.h"

#include <QHBoxLayout>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QScrollBar>
#include <QShortcut>
#include <QStringDecoder>
#include <QTextBrowser>
#include <QTextDocument>
#include <QUrl>
#include <QVBoxLayout>

#include "platform/qt/base/shown_text.h"

namespace platform::qt {

namespace {

constexpr QSize kWindowSize(340, 420);
constexpr int kMargin = 4;
constexpr int kIndent = 18;

// A text browser that has nothing to load from. The toolkit looks for the file of an image or a
// style sheet that it is not given, so it is given one that does nothing.
class Page : public QTextBrowser {
  public:
    explicit Page(QWidget* parent) : QTextBrowser(parent) {
        setObjectName(QStringLiteral("helpPage"));
        setAccessibleName(QStringLiteral("Help page"));
        setOpenLinks(false);
    }

    QVariant loadResource(int type, const QUrl& /*name*/) override {
        if (type != QTextDocument::ImageResource) {
            return QByteArray(" ");
        }
        QImage nothing(1, 1, QImage::Format_ARGB32);
        nothing.fill(Qt::transparent);
        return nothing;
    }

  protected:
    void doSetSource(const QUrl& /*name*/, QTextDocument::ResourceType /*type*/) override {}
};

// Without its images: the toolkit looks for larger ones beside their files.
QString WithoutImages(QString page) {
    static const QRegularExpression image(QStringLiteral("<\\s*img\\b"),
                                          QRegularExpression::CaseInsensitiveOption);
    return page.replace(image, QStringLiteral("<span"));
}

}  // namespace

QString PageText(QByteArrayView bytes) {
    QStringDecoder decoder(QStringDecoder::Utf8);
    const QString text = decoder(bytes);
    return decoder.hasError() ? QString::fromLatin1(bytes) : text;
}

HelpWindow::HelpWindow(const QString& page, const QString& place)
    : place_(place), page_(new Page(this)) {
    page_->document()->setIndentWidth(kIndent);
    page_->setHtml(WithoutImages(page));
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
    column->addWidget(page_);
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
    answer_->setAccessibleName(QStringLiteral("Result of the search"));
    for (QWidget* const widget : {static_cast<QWidget*>(back_), static_cast<QWidget*>(label),
                                  static_cast<QWidget*>(wanted_), static_cast<QWidget*>(find)}) {
        row->addWidget(widget);
    }
    column->addWidget(answer_);
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

// From the beginning again behind the last place.
void HelpWindow::Find() {
    const QString wanted = wanted_->text();
    bool found = wanted.isEmpty() || page_->find(wanted);
    if (!found) {
        const QTextCursor before = page_->textCursor();
        page_->moveCursor(QTextCursor::Start);
        found = page_->find(wanted);
        if (!found) {
            page_->setTextCursor(before);
        }
    }
    answer_->setText(found ? QString() : QStringLiteral("\"%1\" is not on this page").arg(wanted));
    answer_->setVisible(!found);
}

}  // namespace platform::qt
