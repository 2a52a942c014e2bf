#pragma once

#include <QByteArrayView>
#include <QString>
#include <QWidget>
#include <vector>

class QLabel;
class QLineEdit;
class QPushButton;
class QUrl;

namespace platform::qt {

class HelpBrowser;

// The text of a page that is UTF-8, or else of one byte for a character.
QString PageText(QByteArrayView bytes);

// The help viewer: one page of HTML, of which it shows the text and nothing else. It opens no file
// and no address; a link leads to a place of the same page or nowhere. The keyboard does all that
// the mouse does.
class HelpWindow : public QWidget {
  public:
    // Shows the page from `place` on; from its beginning where it has no such place.
    HelpWindow(const QString& page, const QString& place);

  protected:
    void showEvent(QShowEvent* event) override;

  private:
    void AddControls();
    void AddKeys();
    void GoTo(const QString& place);
    void Follow(const QUrl& link);
    void GoBack();
    void Find();
    void Answer(const QString& text);

    QString place_;  // where it begins
    HelpBrowser* page_;
    QPushButton* back_ = nullptr;  // all of them its own
    QLineEdit* wanted_ = nullptr;
    QLabel* answer_ = nullptr;
    std::vector<int> places_;  // that the user has left by a link, as positions of the scroll bar
};

}  // namespace platform::qt
