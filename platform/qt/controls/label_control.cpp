#include "platform/qt/controls/label_control.h"

#include <QLabel>

namespace platform::qt {

LabelControl::LabelControl(WindowContext& context, const CreateParams& params)
    : Window(context, params) {
    auto label = std::make_unique<QLabel>(params.surface);
    label_ = label.get();
    label_->setTextFormat(Qt::PlainText);
    label_->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    label_->setWordWrap(true);
    label_->setText(params.text);
    Adopt(std::move(label), params);
}

void LabelControl::SetText(const QString& text) {
    Window::SetText(text);
    label_->setText(text);
}

}  // namespace platform::qt
