#pragma once

#include <QAbstractListModel>
#include <vector>

#include "platform/qt/base/sort_order.h"

namespace platform::qt {

// The entries of a list box. An added entry waits until the toolkit's next turn or until a message
// asks for the list: entries that come one by one are sorted all at once.
class ListBoxModel : public QAbstractListModel {
  public:
    explicit ListBoxModel(bool sorted) : sorted_(sorted) {}

    // Returns how many entries came before it in time.
    int Add(const QString& text);
    void Clear();

    // Brings the entries that wait to their places. Selections stay with their entries.
    void Settle();

    // All entries, those that wait included.
    int count() const { return static_cast<int>(entries_.size() + added_.size()); }

    // The text of a settled entry, each unit of it as it was added; null beyond the list.
    const QString* TextAt(std::size_t row) const;

    int rowCount(const QModelIndex& parent) const override;
    QVariant data(const QModelIndex& index, int role) const override;

  protected:
    void customEvent(QEvent* event) override;

  private:
    void MergeFrom(std::size_t middle);

    bool sorted_;
    std::vector<SortText> entries_;
    std::vector<QString> added_;
};

}  // namespace platform::qt
