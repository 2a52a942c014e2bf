#include "platform/qt/desktop/help_window.h"

#include <sys/stat.h>

#include <QLineEdit>
#include <QScrollBar>
#include <QTextBrowser>
#include <filesystem>

#include "platform/device/assembled_device.h"
#include "tests/support/display_fixture.h"
#include "tests/support/temporary_device.h"

namespace {

class HelpWindowTest : public DisplayTest {};

TEST_F(HelpWindowTest, LinksAndKeysLeadWithinThePageAlone) {
    const TemporaryDevice device;
    const QString style = QString::fromStdString(device.path() + "/style");
    WriteFile(style.toStdString(), "p { color: #ff0000 }");
    QString page = QStringLiteral(
                       "<head><title>T</title><style>@import url(file://%1);</style>"
                       "<link rel=stylesheet type='text/css' href='file://%1'></head>"
                       "<a href='file:///etc/hosts'>out</a> "
                       "<a href='#b'>in</a><img src='file:///x.png'>")
                       .arg(style);
    page += QStringLiteral("<p>line").repeated(100) + "<a name='a'></a>here" +
            QStringLiteral("<p>line").repeated(100) + "<a name='b'></a>there" +
            QStringLiteral("<p>line").repeated(100);
    platform::qt::HelpWindow window(page, QStringLiteral("a"));
    window.show();
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    auto& text = *window.findChild<QTextBrowser*>();
    EXPECT_FALSE(text.toHtml().contains("#ff0000")) << "a file was read";
    const int begin = text.verticalScrollBar()->value();
    EXPECT_GT(begin, 0);
    Q_EMIT text.anchorClicked(QUrl(QStringLiteral("file:///etc/hosts")));
    EXPECT_EQ(text.verticalScrollBar()->value(), begin);
    Q_EMIT text.anchorClicked(QUrl(QStringLiteral("#b")));
    EXPECT_GT(text.verticalScrollBar()->value(), begin);
    QTest::keyClick(&window, Qt::Key_Left, Qt::AltModifier);
    EXPECT_EQ(text.verticalScrollBar()->value(), begin);
    QTest::keyClick(&window, Qt::Key_F, Qt::ControlModifier);
    auto& wanted = *window.findChild<QLineEdit*>();
    QTest::keyClicks(&wanted, QStringLiteral("there"));
    QTest::keyClick(&wanted, Qt::Key_Return);
    EXPECT_EQ(text.textCursor().selectedText(), "there");
    EXPECT_EQ(wanted.accessibleDescription(), "");
    QTest::keyClick(&wanted, Qt::Key_S);
    QTest::keyClick(&wanted, Qt::Key_Return);
    EXPECT_EQ(text.textCursor().selectedText(), "there");
    EXPECT_EQ(wanted.accessibleDescription(), "\"theres\" is not on this page");
    EXPECT_EQ(window.windowTitle(), "T");
}

TEST_F(HelpWindowTest, APageOfTooMuchMarkupIsShownAsItsText) {
    for (const int depth : {1, 3000}) {
        const platform::qt::HelpWindow window(
            QStringLiteral("<table><tr><td>").repeated(depth) + "deep", {});
        const QString text = window.findChild<QTextBrowser*>()->toPlainText();
        EXPECT_EQ(text.contains("cannot be shown"), depth > 1);
        EXPECT_TRUE(text.contains("deep"));
    }
}

TEST_F(HelpWindowTest, AViewerIsGivenThePageAndNoOtherDescriptor) {
    const TemporaryDevice device;
    const std::string script = device.path() + "/viewer";
    const std::string seen = device.path() + "/seen";
    WriteFile(script, "#!/bin/sh\n(echo $1; cat; ls /proc/$$/fd) >" + seen + ".new\nmv " + seen +
                          ".new " + seen + "\n");
    ASSERT_EQ(chmod(script.c_str(), 0700), 0);
    platform::AssembledDevice store(device.OpenFiles(), u"\\x.exe", device.OpenRegistry());
    store.OfferHelp(std::make_unique<platform::HelpViewers>(script, 0));
    const platform::StoreInUse inUse(store);
    const auto start = [](const WCHAR* image) {
        return CreateProcessW(image, u"file:page.htm#P", nullptr, nullptr, FALSE, 0, nullptr,
                              nullptr, nullptr, nullptr);
    };
    device.Make({"Windows/PAGE.HTM=of the device\n"});
    EXPECT_NE(start(u"peghelp.exe"), 0);
    EXPECT_TRUE(QTest::qWaitFor([&] { return std::filesystem::exists(seen); }));
    EXPECT_EQ(ReadFile(seen), "--show-help-page=P\nof the device\n0\n1\n10\n2\n");
    EXPECT_EQ(start(u"other.exe"), 0);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
    std::filesystem::remove(seen);
    std::filesystem::remove_all(device.files() + "/Windows");
    EXPECT_NE(start(u"peghelp.exe"), 0);
    EXPECT_TRUE(QTest::qWaitFor([&] { return std::filesystem::exists(seen); }));
    EXPECT_NE(ReadFile(seen).find("<A NAME=\"Main_Contents\">"), std::string::npos);
}

}  // namespace
