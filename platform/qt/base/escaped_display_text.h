#pragma once

#include <QString>

namespace platform::qt {

// Texts of the device may hold units that would not be seen, or that would change how their
// neighbours are seen: control characters, direction marks, halves of pairs that are not whole,
// blanks of other widths. Each such unit is shown as <XXXX> with its hexadecimal digits.

// A text in which every unit is seen, and which no other text has.
QString EscapedText(const QString& text);

// The text that EscapedText has escaped so.
QString TrueText(const QString& escaped);

// A row of a list for the eye and for assistive technology: the escaped text, in which the parts of
// a path keep their order from left to right, whatever script they are in.
QString ShownText(const QString& text);

// The same for a text of several lines, whose ends stay.
QString ShownLines(const QString& text);

// A text for a window's title, in which the toolkit's place for a mark of changes is plain text.
QString TitleText(QString text);

}  // namespace platform::qt
