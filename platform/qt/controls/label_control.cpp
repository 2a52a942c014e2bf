#include "platform/qt/controls/label_control.h"

#include <QLabel>

namespace platform::qt {

LabelControl::LabelControl(Station& station, const Birth& birth) : Window(station, birth) {
    auto label = std::make_unique<QLabel>(birth.surface);
    label_ = label.get();
    label_->setTextFormat(Qt::PlainText);
    label_->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    label_->setWordWrap(true);
    label_->setText(birth.text);
    Adopt(std::move(label), birth);
}

void LabelControl::SetText(const QString& text) {
    Window::SetText(text);
    label_->setText(text);
}

}  // namespace platform::qt
