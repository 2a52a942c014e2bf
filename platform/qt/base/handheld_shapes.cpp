#include "platform/qt/base/handheld_shapes.h"

#include <QPolygonF>
#include <QTransform>

namespace platform::qt {

namespace {

constexpr int kArrowHalf = 4;  // of its base, and as much as it is high
constexpr int kOpenerSide = 9;
const QColor kPressedFace(0xC8, 0xC8, 0xC4);
const QColor kWarning(0xFF, 0xD0, 0x20);
const QColor kScreen(0xC4, 0xDC, 0xF0);

void FillShape(QPainter& painter, const QPolygonF& shape, const QColor& color) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    painter.drawPolygon(shape);
    painter.restore();
}

QPolygonF ThumbShape(const QRectF& rect) {
    const double shoulder = rect.bottom() - rect.width() / 2;
    return {{rect.topLeft(),
             rect.topRight(),
             {rect.right(), shoulder},
             {rect.center().x(), rect.bottom()},
             {rect.left(), shoulder}}};
}

}  // namespace

void DrawFrame(QPainter& painter, const QRect& rect, const QColor& color) {
    painter.fillRect(rect.x(), rect.y(), rect.width(), 1, color);
    painter.fillRect(rect.x(), rect.bottom(), rect.width(), 1, color);
    painter.fillRect(rect.x(), rect.y(), 1, rect.height(), color);
    painter.fillRect(rect.right(), rect.y(), 1, rect.height(), color);
}

void DrawRaised(QPainter& painter, const QRect& rect, bool isPressed) {
    painter.fillRect(rect, isPressed ? kPressedFace : kFace);
    DrawFrame(painter, rect, kEdge);
}

void DrawArrow(QPainter& painter, const QRect& rect, Direction direction, const QColor& color) {
    const int turn = direction == Direction::Up      ? 180
                     : direction == Direction::Left  ? 90
                     : direction == Direction::Right ? -90
                                                     : 0;
    const double half = kArrowHalf;
    const QPolygonF down = {{{-half, -half / 2}, {half, -half / 2}, {0, half / 2}}};
    const QPointF middle = QRectF(rect).center();
    FillShape(painter, QTransform::fromTranslate(middle.x(), middle.y()).rotate(turn).map(down),
              color);
}

void DrawTick(QPainter& painter, const QRect& rect, const QColor& color) {
    static const QPolygonF tick = {
        {{-3.5, -0.6}, {-1.2, 1.7}, {3.5, -3}, {3.5, -0.6}, {-1.2, 4.1}, {-3.5, 1.8}}};
    FillShape(painter, tick.translated(QRectF(rect).center()), color);
}

void DrawThumb(QPainter& painter, const QRect& rect) {
    FillShape(painter, ThumbShape(rect), kEdge);
    FillShape(painter, ThumbShape(QRectF(rect).adjusted(1, 1, -1, -1.4)), kFace);
}

void DrawOpener(QPainter& painter, const QRect& rect, bool isOpen) {
    QRect box(0, 0, kOpenerSide, kOpenerSide);
    box.moveCenter({rect.x() + rect.width() / 2, rect.y() + rect.height() / 2});
    painter.fillRect(box, Qt::white);
    DrawFrame(painter, box, kEdge);
    const int middle = kOpenerSide / 2;
    painter.fillRect(box.x() + 2, box.y() + middle, kOpenerSide - 4, 1, kInk);
    if (!isOpen) {
        painter.fillRect(box.x() + middle, box.y() + 2, 1, kOpenerSide - 4, kInk);
    }
}

void DrawWarning(QPainter& painter) {
    FillShape(painter, {{{12, 1}, {24, 23}, {0, 23}}}, kInk);
    FillShape(painter, {{{12, 4}, {21.6, 21.6}, {2.4, 21.6}}}, kWarning);
    FillShape(painter, {{{10.7, 8.5}, {13.3, 8.5}, {12.7, 16}, {11.3, 16}}}, kInk);
    FillShape(painter, QRectF(10.8, 17.4, 2.4, 2.4), kInk);
}

void DrawHandheld(QPainter& painter) {
    FillShape(painter, QRectF(4, 0, 16, 24), kEdge);
    FillShape(painter, QRectF(5.5, 1.5, 13, 21), kFace);
    FillShape(painter, QRectF(7, 3, 10, 13), kEdge);
    FillShape(painter, QRectF(8, 4, 8, 11), kScreen);
    FillShape(painter, QRectF(10.5, 18, 3, 3), kEdge);
}

}  // namespace platform::qt
