#pragma once

#include <QColor>
#include <QPainter>
#include <QRect>

namespace platform::qt {

// The shapes that frames, buttons and marks are made of. Straight edges are filled rectangles in
// pixels of the handheld, so that each of them is as wide as the others at every scale; a pen's
// line would be a hair of the desktop's, or wider on one side.

inline const QColor kFace(0xE4, 0xE4, 0xE0);
inline const QColor kInk(0x00, 0x00, 0x00);
inline const QColor kEdge(0x68, 0x68, 0x66);
inline const QColor kFaded(0x84, 0x84, 0x82);  // what cannot be used now
inline const QColor kChosen(0x1F, 0x4F, 0x8F);

enum class Direction { Up, Down, Left, Right };

// A frame of one pixel along the inside of `rect`.
void DrawFrame(QPainter& painter, const QRect& rect, const QColor& color);

// A button's face with its frame.
void DrawRaised(QPainter& painter, const QRect& rect, bool isPressed);

// A triangle in the middle of `rect`.
void DrawArrow(QPainter& painter, const QRect& rect, Direction direction, const QColor& color);

// A check mark in the middle of `rect`, for a box of 11 pixels.
void DrawTick(QPainter& painter, const QRect& rect, const QColor& color);

// The thumb of a slider, which points down.
void DrawThumb(QPainter& painter, const QRect& rect);

// The sign beside a folder that can be opened or closed, in the middle of `rect`.
void DrawOpener(QPainter& painter, const QRect& rect, bool isOpen);

// Pictures of 24 by 24 pixels: a warning, and a handheld.
void DrawWarning(QPainter& painter);
void DrawHandheld(QPainter& painter);

}  // namespace platform::qt
