#include "platform/qt/desktop/help_browser.h"

#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QImage>
#include <QPainter>
#include <QRegularExpression>
#include <QUrl>
#include <cerrno>

namespace platform::qt {

namespace {

constexpr int kIndent = 18;
constexpr QSize kTrialSize(320, 360);
constexpr rlim_t kTrialSeconds = 1;    // of computing; a page of help takes some milliseconds
constexpr unsigned kLongestTrial = 5;  // seconds, computing or not

// Without its images: the toolkit looks for larger ones beside their files.
QString WithoutImages(QString page) {
    static const QRegularExpression image(QStringLiteral("<\\s*img\\b"),
                                          QRegularExpression::CaseInsensitiveOption);
    return page.replace(image, QStringLiteral("<span"));
}

QString WithoutMarkup(QString page) {
    static const QRegularExpression tag(QStringLiteral("<[^>]*>"));
    return QStringLiteral("The markup of this page cannot be shown. Its text:\n\n") +
           page.remove(tag);
}

[[noreturn]] void TryAndExit(const QString& html) {
    const rlimit limit = {kTrialSeconds, kTrialSeconds};
    setrlimit(RLIMIT_CPU, &limit);
    alarm(kLongestTrial);
    prctl(PR_SET_DUMPABLE, 0);  // its end is an answer and leaves nothing to look into
    HelpBrowser browser(nullptr);
    browser.setHtml(html);
    browser.document()->setTextWidth(kTrialSize.width());
    QImage picture(kTrialSize, QImage::Format_RGB32);
    QPainter painter(&picture);
    browser.document()->drawContents(&painter, QRectF({}, kTrialSize));
    _exit(0);
}

// Tables in tables take the toolkit time and stack without bound, so another process tries first.
bool CanBeShown(const QString& html) {
    const pid_t trial = fork();
    if (trial == 0) {
        TryAndExit(html);
    }
    int status = -1;
    while (trial > 0 && waitpid(trial, &status, 0) == -1 && errno == EINTR) {
    }
    return status == 0;
}

}  // namespace

HelpBrowser::HelpBrowser(QWidget* parent) : QTextBrowser(parent) {
    setObjectName(QStringLiteral("helpPage"));
    setAccessibleName(QStringLiteral("Help page"));
    setOpenLinks(false);
    document()->setIndentWidth(kIndent);
}

void HelpBrowser::ShowPage(const QString& html) {
    const QString page = WithoutImages(html);
    CanBeShown(page) ? setHtml(page) : setPlainText(WithoutMarkup(page));
}

// The toolkit looks for the file of an image or a style sheet that it is not given, so it is given
// one that does nothing.
QVariant HelpBrowser::loadResource(int type, const QUrl& /*name*/) {
    if (type != QTextDocument::ImageResource) {
        return QByteArray(" ");
    }
    QImage nothing(1, 1, QImage::Format_ARGB32);
    nothing.fill(Qt::transparent);
    return nothing;
}

}  // namespace platform::qt
