#pragma once

#include <QTextBrowser>

namespace platform::qt {

// A text browser that has nothing to load from: neither files nor addresses.
class HelpBrowser : public QTextBrowser {
  public:
    explicit HelpBrowser(QWidget* parent);

    // Shows a page of HTML; its text alone, after a line that says so, where its markup is too much
    // for the toolkit.
    void ShowPage(const QString& html);

    QVariant loadResource(int type, const QUrl& name) override;

  protected:
    void doSetSource(const QUrl& /*name*/, QTextDocument::ResourceType /*type*/) override {}
};

}  // namespace platform::qt
