// An empty program of the windows' toolkit: shows one window and ends after painting it.

#include <QApplication>
#include <QTimer>
#include <QWidget>
#include <cstdlib>

namespace {

class EmptyWindow : public QWidget {
  protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QTimer::singleShot(0, this, [] { std::_Exit(0); });
    }
};

}  // namespace

int main(int count, char** words) {
    const QApplication application(count, words);
    EmptyWindow window;
    window.resize(240, 320);
    window.show();
    return QApplication::exec();
}
