#include "platform/qt/base/handheld_style.h"

#include <QFont>
#include <QIcon>
#include <QPainter>
#include <QPalette>
#include <QProxyStyle>
#include <QStyleFactory>
#include <QStyleOption>
#include <algorithm>
#include <array>

#include "platform/qt/base/handheld_shapes.h"

namespace platform::qt {

namespace {

const QColor kTrack(0xF2, 0xF2, 0xF0);
const QColor kPressedTrack(0xD4, 0xD4, 0xD0);
const QColor kBranch(0xA8, 0xA8, 0xA6);

constexpr int kIconSide = 24;
constexpr int kLargestScale = 8;

struct Metric {
    QStyle::PixelMetric metric;
    int pixels;
};

// The toolkit's own measures are made for a desktop. These leave every label its room.
constexpr std::array kMetrics = {
    Metric{QStyle::PM_IndicatorWidth, 11},
    Metric{QStyle::PM_IndicatorHeight, 11},
    Metric{QStyle::PM_CheckBoxLabelSpacing, 4},
    Metric{QStyle::PM_ButtonMargin, 4},
    Metric{QStyle::PM_DefaultFrameWidth, 1},
    Metric{QStyle::PM_ScrollBarExtent, kScrollBarWidth},
    Metric{QStyle::PM_ScrollBarSliderMin, 8},
    Metric{QStyle::PM_TabBarTabHSpace, 14},
    Metric{QStyle::PM_TabBarTabVSpace, 6},
    Metric{QStyle::PM_TabBarScrollButtonWidth, 14},
    Metric{QStyle::PM_MenuBarHMargin, 2},
    Metric{QStyle::PM_MenuBarVMargin, 2},
    Metric{QStyle::PM_MenuBarItemSpacing, 0},
    Metric{QStyle::PM_SmallIconSize, 16},
    Metric{QStyle::PM_SliderLength, 9},
    Metric{QStyle::PM_TabBarTabShiftVertical, 0},
    Metric{QStyle::PM_TabBarTabShiftHorizontal, 0},
};

bool Is(const QStyleOption& option, QStyle::StateFlag state) {
    return (option.state & state) != 0;
}

QColor MarkColor(const QStyleOption& option) {
    return Is(option, QStyle::State_Enabled) ? kInk : kFaded;
}

void DrawBorder(const QStyleOption& option, QPainter& painter) {
    DrawFrame(painter, option.rect, kEdge);
}

// Where the keyboard is matters to those who use it.
void DrawFocusMark(const QStyleOption& option, QPainter& painter) {
    if (Is(option, QStyle::State_KeyboardFocusChange)) {
        DrawFrame(painter, option.rect, Is(option, QStyle::State_Selected) ? kFace : kEdge);
    }
}

void DrawButton(const QStyleOption& option, QPainter& painter) {
    const bool isPressed = Is(option, QStyle::State_Sunken) || Is(option, QStyle::State_On);
    DrawRaised(painter, option.rect, isPressed);
}

void DrawDefaultMark(const QStyleOption& option, QPainter& painter) {
    DrawFrame(painter, option.rect, kInk);
}

void DrawCheckBox(const QStyleOption& option, QPainter& painter) {
    painter.fillRect(option.rect, Is(option, QStyle::State_Sunken) ? kFace : QColor(Qt::white));
    DrawFrame(painter, option.rect, kEdge);
    if (Is(option, QStyle::State_On)) {
        DrawTick(painter, option.rect, MarkColor(option));
    }
}

template <Direction kDirection>
void DrawArrowMark(const QStyleOption& option, QPainter& painter) {
    DrawArrow(painter, option.rect, kDirection, MarkColor(option));
}

// The lines that lead to a row of a tree, and the sign of one that opens.
void DrawBranch(const QStyleOption& option, QPainter& painter) {
    const QRect& rect = option.rect;
    const QPoint middle(rect.x() + rect.width() / 2, rect.y() + rect.height() / 2);
    const bool isItem = Is(option, QStyle::State_Item);
    const bool goesOn = Is(option, QStyle::State_Sibling);
    const int end = goesOn ? rect.bottom() + 1 : isItem ? middle.y() + 1 : rect.y();
    painter.fillRect(middle.x(), rect.y(), 1, end - rect.y(), kBranch);
    if (isItem) {
        painter.fillRect(middle.x(), middle.y(), rect.right() + 1 - middle.x(), 1, kBranch);
    }
    if (Is(option, QStyle::State_Children)) {
        DrawOpener(painter, rect, Is(option, QStyle::State_Open));
    }
}

// A part of a scroll bar.
template <Direction kBack, Direction kAcross>
void DrawBarArrow(const QStyleOption& option, QPainter& painter) {
    DrawButton(option, painter);
    DrawArrow(painter, option.rect, Is(option, QStyle::State_Horizontal) ? kAcross : kBack,
              MarkColor(option));
}

void DrawTrack(const QStyleOption& option, QPainter& painter) {
    painter.fillRect(option.rect, Is(option, QStyle::State_Sunken) ? kPressedTrack : kTrack);
}

// A bar with nothing to scroll has no thumb.
void DrawBarThumb(const QStyleOption& option, QPainter& painter) {
    if (Is(option, QStyle::State_Enabled)) {
        DrawRaised(painter, option.rect, false);
    } else {
        painter.fillRect(option.rect, kTrack);
    }
}

// The chosen tab has the page's white and no line between the two.
void DrawTab(const QStyleOption& option, QPainter& painter) {
    const auto* const tab = qstyleoption_cast<const QStyleOptionTab*>(&option);
    const bool isBelow = tab != nullptr && tab->shape == QTabBar::RoundedSouth;
    const bool isChosen = Is(option, QStyle::State_Selected);
    const QRect& rect = option.rect;
    painter.fillRect(rect, isChosen ? QColor(Qt::white) : kFace);
    DrawFrame(painter, rect, kEdge);
    if (isChosen) {
        painter.fillRect(rect.x() + 1, isBelow ? rect.y() : rect.bottom(), rect.width() - 2, 1,
                         Qt::white);
    }
}

template <typename Element>
struct Drawing {
    Element element;
    void (*draw)(const QStyleOption& option, QPainter& painter);
};

constexpr Drawing<QStyle::PrimitiveElement> kPrimitives[] = {
    {QStyle::PE_Frame, DrawBorder},
    {QStyle::PE_FrameLineEdit, DrawBorder},
    {QStyle::PE_FrameMenu, DrawBorder},
    {QStyle::PE_FrameFocusRect, DrawFocusMark},
    {QStyle::PE_FrameDefaultButton, DrawDefaultMark},
    {QStyle::PE_PanelButtonCommand, DrawButton},
    {QStyle::PE_PanelButtonTool, DrawButton},
    {QStyle::PE_PanelButtonBevel, DrawButton},
    {QStyle::PE_IndicatorCheckBox, DrawCheckBox},
    {QStyle::PE_IndicatorArrowUp, DrawArrowMark<Direction::Up>},
    {QStyle::PE_IndicatorArrowDown, DrawArrowMark<Direction::Down>},
    {QStyle::PE_IndicatorArrowLeft, DrawArrowMark<Direction::Left>},
    {QStyle::PE_IndicatorArrowRight, DrawArrowMark<Direction::Right>},
    {QStyle::PE_IndicatorBranch, DrawBranch},
};

constexpr Drawing<QStyle::ControlElement> kControls[] = {
    {QStyle::CE_ScrollBarSubLine, DrawBarArrow<Direction::Up, Direction::Left>},
    {QStyle::CE_ScrollBarAddLine, DrawBarArrow<Direction::Down, Direction::Right>},
    {QStyle::CE_ScrollBarSubPage, DrawTrack},
    {QStyle::CE_ScrollBarAddPage, DrawTrack},
    {QStyle::CE_ScrollBarSlider, DrawBarThumb},
    {QStyle::CE_TabBarTabShape, DrawTab},
};

// False when the table has no row for the element.
template <typename Rows, typename Element>
bool DrawnBy(const Rows& rows, Element element, const QStyleOption& option, QPainter& painter) {
    const auto row = std::ranges::find_if(
        rows, [element](const auto& drawing) { return drawing.element == element; });
    if (row == std::end(rows)) {
        return false;
    }
    row->draw(option, painter);
    return true;
}

QIcon LargeIcon(void (*draw)(QPainter& painter)) {
    QPixmap picture(kIconSide * kLargestScale, kIconSide * kLargestScale);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.scale(kLargestScale, kLargestScale);
    draw(painter);
    painter.end();
    return picture;
}

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

    // The toolkit's own is small.
    QIcon standardIcon(StandardPixmap name, const QStyleOption* option,
                       const QWidget* widget) const override {
        return name == SP_MessageBoxWarning ? LargeIcon(DrawWarning)
                                            : QProxyStyle::standardIcon(name, option, widget);
    }

    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override {
        if (!DrawnBy(kPrimitives, element, *option, *painter)) {
            QProxyStyle::drawPrimitive(element, option, painter, widget);
        }
    }

    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override {
        const auto* const item = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
        if (element == CE_MenuBarItem && item != nullptr) {
            DrawMenuName(*item, *painter);
        } else if (!DrawnBy(kControls, element, *option, *painter)) {
            QProxyStyle::drawControl(element, option, painter, widget);
        }
    }

    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                            QPainter* painter, const QWidget* widget) const override {
        const auto* const combo = qstyleoption_cast<const QStyleOptionComboBox*>(option);
        const auto* const slider = qstyleoption_cast<const QStyleOptionSlider*>(option);
        if (control == CC_ComboBox && combo != nullptr) {
            DrawComboBox(*combo, *painter, widget);
        } else if (control == CC_Slider && slider != nullptr) {
            DrawSlider(*slider, *painter, widget);
        } else {
            QProxyStyle::drawComplexControl(control, option, painter, widget);
        }
    }

  private:
    // The title of a menu in its bar.
    void DrawMenuName(const QStyleOptionMenuItem& item, QPainter& painter) const {
        const bool isOpen = Is(item, State_Selected) || Is(item, State_Sunken);
        painter.fillRect(item.rect, isOpen ? kChosen : kFace);
        drawItemText(&painter, item.rect, Qt::AlignCenter, item.palette, true, item.text,
                     isOpen ? QPalette::HighlightedText : QPalette::ButtonText);
    }

    // The field is as white as an edit box.
    void DrawComboBox(const QStyleOptionComboBox& combo, QPainter& painter,
                      const QWidget* widget) const {
        QRect arrow = subControlRect(CC_ComboBox, &combo, SC_ComboBoxArrow, widget);
        arrow.setTop(combo.rect.top());
        arrow.setBottomRight(combo.rect.bottomRight());
        painter.fillRect(combo.rect, Qt::white);
        DrawFrame(painter, combo.rect, kEdge);
        DrawRaised(painter, arrow, Is(combo, State_Sunken));
        DrawArrow(painter, arrow, Direction::Down, MarkColor(combo));
        if (Is(combo, State_HasFocus) && !combo.editable) {
            const QRect field = subControlRect(CC_ComboBox, &combo, SC_ComboBoxEditField, widget);
            painter.fillRect(field, kChosen);
            painter.setPen(Qt::white);  // with which the toolkit writes the entry afterwards
        }
    }

    void DrawSlider(const QStyleOptionSlider& slider, QPainter& painter,
                    const QWidget* widget) const {
        const QRect groove = subControlRect(CC_Slider, &slider, SC_SliderGroove, widget);
        const QRect thumb = subControlRect(CC_Slider, &slider, SC_SliderHandle, widget);
        const int room = groove.width() - thumb.width();
        DrawFrame(painter, QRect(groove.x(), thumb.center().y() - 1, groove.width(), 3), kEdge);
        for (int value = slider.minimum; slider.tickInterval > 0 && value <= slider.maximum;
             value += slider.tickInterval) {
            const int place = sliderPositionFromValue(slider.minimum, slider.maximum, value, room);
            painter.fillRect(groove.x() + place + thumb.width() / 2, thumb.bottom() + 1, 1,
                             slider.rect.bottom() - thumb.bottom(), kInk);
        }
        DrawThumb(painter, thumb);
        if (Is(slider, State_HasFocus)) {
            DrawFocusMark(slider, painter);
        }
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

QIcon DeviceIcon() {
    return LargeIcon(DrawHandheld);
}

QColor BackgroundColor(HBRUSH brush) {
    const auto value = reinterpret_cast<DWORD_PTR>(brush);
    if (value == (SYS_COLOR_INDEX_FLAG | COLOR_BACKGROUND)) {
        return {0xCF, 0xDD, 0xEB};
    }
    return Qt::white;
}

}  // namespace platform::qt
