#include "platform/qt/base/handheld_style.h"

#include <QFont>
#include <QPainter>
#include <QPalette>
#include <QProxyStyle>
#include <QStyleFactory>
#include <QStyleOption>
#include <algorithm>
#include <array>

namespace platform::qt {

namespace {

const QColor kFace(0xE4, 0xE4, 0xE0);
const QColor kInk(0x00, 0x00, 0x00);
const QColor kChosen(0x1F, 0x4F, 0x8F);

struct Metric {
    QStyle::PixelMetric metric;
    int pixels;
};

// The toolkit's own measures are made for a desktop. These leave every label its room.
constexpr std::array kMetrics = {
    Metric{QStyle::PM_IndicatorWidth, 11},      Metric{QStyle::PM_IndicatorHeight, 11},
    Metric{QStyle::PM_CheckBoxLabelSpacing, 4}, Metric{QStyle::PM_ButtonMargin, 4},
    Metric{QStyle::PM_DefaultFrameWidth, 1},    Metric{QStyle::PM_ScrollBarExtent, kScrollBarWidth},
    Metric{QStyle::PM_ScrollBarSliderMin, 8},   Metric{QStyle::PM_TabBarTabHSpace, 14},
    Metric{QStyle::PM_TabBarTabVSpace, 6},      Metric{QStyle::PM_TabBarScrollButtonWidth, 14},
    Metric{QStyle::PM_MenuBarHMargin, 2},       Metric{QStyle::PM_MenuBarVMargin, 2},
    Metric{QStyle::PM_MenuBarItemSpacing, 0},   Metric{QStyle::PM_SmallIconSize, 16},
    Metric{QStyle::PM_SliderLength, 9},
};

class HandheldStyle : public QProxyStyle {
  public:
    HandheldStyle() : QProxyStyle(QStyleFactory::create("Windows")) {}

    int pixelMetric(PixelMetric metric, const QStyleOption* option,
                    const QWidget* widget) const override {
        const auto* const found = std::find_if(kMetrics.begin(), kMetrics.end(),
                                               [&](const Metric& m) { return m.metric == metric; });
        return found != kMetrics.end() ? found->pixels
                                       : QProxyStyle::pixelMetric(metric, option, widget);
    }

    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* data) const override {
        switch (hint) {
            case SH_EtchDisabledText:
            case SH_UnderlineShortcut:
                return 0;
            default:
                return QProxyStyle::styleHint(hint, option, widget, data);
        }
    }

    // A border is one line.
    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override {
        if (element == PE_FrameLineEdit || element == PE_Frame) {
            painter->save();
            painter->setPen(option->palette.color(QPalette::Dark));
            painter->drawRect(option->rect.adjusted(0, 0, -1, -1));
            painter->restore();
            return;
        }
        QProxyStyle::drawPrimitive(element, option, painter, widget);
    }
};

QPalette LightPalette() {
    QPalette colors(kFace);
    colors.setColor(QPalette::WindowText, kInk);
    colors.setColor(QPalette::Text, kInk);
    colors.setColor(QPalette::ButtonText, kInk);
    colors.setColor(QPalette::Base, Qt::white);
    colors.setColor(QPalette::Highlight, kChosen);
    colors.setColor(QPalette::HighlightedText, Qt::white);
    return colors;
}

}  // namespace

void ApplyHandheldStyle(QApplication& application) {
    QFont font{QString::fromLatin1(kFontFamily)};
    font.setPixelSize(kFontHeight);
    font.setHintingPreference(QFont::PreferVerticalHinting);
    // NOLINTBEGIN(clang-analyzer-cplusplus.NewDeleteLeaks): the style becomes the application's own
    QApplication::setStyle(new HandheldStyle);
    QApplication::setPalette(LightPalette());
    QApplication::setFont(font);
    QApplication::setEffectEnabled(Qt::UI_AnimateMenu, false);
    QApplication::setEffectEnabled(Qt::UI_AnimateCombo, false);
    application.setQuitOnLastWindowClosed(false);
    // NOLINTEND(clang-analyzer-cplusplus.NewDeleteLeaks)
}

QColor BackgroundColor(HBRUSH brush) {
    const auto value = reinterpret_cast<DWORD_PTR>(brush);
    if (value == (SYS_COLOR_INDEX_FLAG | COLOR_BACKGROUND)) {
        return {0xCF, 0xDD, 0xEB};
    }
    return Qt::white;
}

}  // namespace platform::qt
