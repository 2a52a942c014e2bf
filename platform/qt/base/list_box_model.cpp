#include "platform/qt/base/list_box_model.h"

#include <QCoreApplication>
#include <algorithm>

#include "platform/qt/base/escaped_display_text.h"

namespace platform::qt {

int ListBoxModel::Add(const QString& text) {
    if (added_.empty()) {
        QCoreApplication::postEvent(this, new QEvent(QEvent::User));
    }
    added_.push_back(text);
    return count() - 1;
}

void ListBoxModel::Clear() {
    beginResetModel();
    entries_.clear();
    added_.clear();
    endResetModel();
}

void ListBoxModel::Settle() {
    if (added_.empty()) {
        return;
    }
    const std::size_t before = entries_.size();
    beginInsertRows({}, static_cast<int>(before), count() - 1);
    for (const QString& text : added_) {
        entries_.emplace_back(text);
    }
    added_.clear();
    if (sorted_) {
        std::stable_sort(entries_.begin() + static_cast<std::ptrdiff_t>(before), entries_.end());
    }
    endInsertRows();
    if (sorted_ && before > 0 && entries_[before] < entries_[before - 1]) {
        MergeFrom(before);
    }
}

const QString* ListBoxModel::TextAt(std::size_t row) const {
    return row < entries_.size() ? &entries_[row].text() : nullptr;
}

int ListBoxModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(entries_.size());
}

QVariant ListBoxModel::data(const QModelIndex& index, int role) const {
    return index.isValid() && role == Qt::DisplayRole
               ? ShownText(entries_[static_cast<std::size_t>(index.row())].text())
               : QVariant();
}

// The toolkit's turn has come.
void ListBoxModel::customEvent(QEvent* /*event*/) {
    Settle();
}

// Merges the sorted rows before `middle` with the sorted rows from there on. A row moves by as many
// places as rows of the other half come before it.
void ListBoxModel::MergeFrom(std::size_t middle) {
    Q_EMIT layoutAboutToBeChanged();
    const auto half = entries_.begin() + static_cast<std::ptrdiff_t>(middle);
    const QModelIndexList from = persistentIndexList();
    QModelIndexList to;
    for (const QModelIndex& index : from) {
        const auto entry = entries_.begin() + index.row();
        const auto steps = entry < half ? std::lower_bound(half, entries_.end(), *entry) - half
                                        : std::upper_bound(entries_.begin(), half, *entry) - half;
        to.push_back(createIndex(index.row() + static_cast<int>(steps), 0));
    }
    std::inplace_merge(entries_.begin(), half, entries_.end());
    changePersistentIndexList(from, to);
    Q_EMIT layoutChanged();
}

}  // namespace platform::qt
