#pragma once

#include <QString>

namespace platform::windows {

// The order of sorted lists: without regard to case, and by the characters where nothing else tells
// two texts apart.
inline bool ComesBefore(const QString& one, const QString& other) {
    const int apartFromCase = QString::compare(one, other, Qt::CaseInsensitive);
    return apartFromCase != 0 ? apartFromCase < 0 : one < other;
}

}  // namespace platform::windows
