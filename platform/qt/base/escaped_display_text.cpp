#include "platform/qt/base/escaped_display_text.h"

#include <QList>
#include <QStringList>
#include <QStringView>
#include <algorithm>
#include <array>
#include <optional>

namespace platform::qt {

namespace {

constexpr qsizetype kEscapeLength = 6;
constexpr QChar kLeftToRight(0x200E);

struct Range {
    char32_t first;
    char32_t last;
};

// Letters and marks that have no looks of their own.
constexpr std::array kUnseenLetters = {
    Range{0x034F, 0x034F}, Range{0x115F, 0x1160},   Range{0x17B4, 0x17B5},  Range{0x180B, 0x180F},
    Range{0x2800, 0x2800}, Range{0x3164, 0x3164},   Range{0xFE00, 0xFE0F},  Range{0xFFA0, 0xFFA0},
    Range{0xFFFC, 0xFFFC}, Range{0x16FE4, 0x16FE4}, Range{0xE0100, 0xE01EF}};

bool IsSeen(char32_t character) {
    switch (QChar::category(character)) {
        case QChar::Other_Control:
        case QChar::Other_Format:
        case QChar::Other_NotAssigned:
        case QChar::Other_PrivateUse:
        case QChar::Other_Surrogate:
        case QChar::Separator_Line:
        case QChar::Separator_Paragraph:
            return false;
        case QChar::Separator_Space:
            return character == U' ';
        default:
            return std::ranges::none_of(kUnseenLetters, [character](const Range& range) {
                return character >= range.first && character <= range.last;
            });
    }
}

// The unit whose escape the text begins with.
std::optional<char16_t> EscapeAt(QStringView text) {
    if (text.size() < kEscapeLength || text[0] != u'<' || text[kEscapeLength - 1] != u'>') {
        return std::nullopt;
    }
    const QStringView digits = text.mid(1, kEscapeLength - 2);
    const bool areDigits = std::ranges::all_of(digits, [](QChar digit) {
        return (digit >= u'0' && digit <= u'9') || (digit >= u'A' && digit <= u'F');
    });
    const ushort unit = areDigits ? digits.toUShort(nullptr, 16) : ushort{0};
    return unit == 0 ? std::nullopt : std::optional<char16_t>(unit);
}

void AppendEscapes(QString& escaped, QStringView units) {
    for (const QChar unit : units) {
        const QString digits = QString::number(unit.unicode(), 16).toUpper();
        escaped += u'<' + digits.rightJustified(kEscapeLength - 2, u'0') + u'>';
    }
}

bool IsPlain(QChar unit) {
    return unit >= u' ' && unit <= u'~' && unit != u'<';
}

bool HasRightToLeft(const QString& text) {
    return std::ranges::any_of(text.toUcs4(), [](char32_t character) {
        const QChar::Direction direction = QChar::direction(character);
        return direction == QChar::DirR || direction == QChar::DirAL;
    });
}

}  // namespace

QString EscapedText(const QString& text) {
    if (std::ranges::all_of(text, IsPlain)) {
        return text;
    }
    QString escaped;
    for (qsizetype index = 0; index < text.size();) {
        const QStringView rest = QStringView(text).mid(index);
        const bool isPair =
            rest.size() > 1 && rest[0].isHighSurrogate() && rest[1].isLowSurrogate();
        const QStringView units = rest.first(isPair ? 2 : 1);
        const char32_t character =
            isPair ? QChar::surrogateToUcs4(rest[0], rest[1]) : rest[0].unicode();
        if (IsSeen(character) && !EscapeAt(rest)) {
            escaped += units;
        } else {
            AppendEscapes(escaped, units);
        }
        index += units.size();
    }
    return escaped;
}

QString TrueText(const QString& escaped) {
    QString text;
    for (qsizetype index = 0; index < escaped.size();) {
        const auto unit = EscapeAt(QStringView(escaped).mid(index));
        text += unit ? QChar(*unit) : escaped[index];
        index += unit ? kEscapeLength : 1;
    }
    return text;
}

QString ShownText(const QString& text) {
    QString shown = EscapedText(text);
    if (HasRightToLeft(shown)) {
        for (const QChar mark : {u'\\', u'<', u'>'}) {
            shown.replace(mark, QString(kLeftToRight) + mark + kLeftToRight);
        }
    }
    return shown;
}

QString ShownLines(const QString& text) {
    QStringList lines = QString(text).remove(u'\r').split(u'\n');
    for (QString& line : lines) {
        line = ShownText(line);
    }
    return lines.join(u'\n');
}

QString TitleText(QString text) {
    return text.replace(QStringLiteral("[*]"), QStringLiteral("[*][*]"));
}

}  // namespace platform::qt
