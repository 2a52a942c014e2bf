#pragma once

#include "core/platform_types.h"

// The ordered list of a page's controls. An item's index is its place in the order of appending. A
// copy is a view: it shares the items of the list that it was copied from and shows as many as
// there were then. Only Clear frees items, so exactly one of the copies, the owner, clears; the
// others must be gone or unused by then. The list does not own the windows.
class CControlList {
  public:
    struct Node {
        Node* next;  // the one appended after this one; null at the last one
        Node* prev;  // the one appended before it; null at the first one
        HWND value;
    };

    // An empty list.
    CControlList();

    // Appends a handle, which may be null. Works after Clear as well.
    void Append(HWND control);

    DWORD Count() const { return count_; }

    // The handle at `index`; null if there is no such item.
    HWND ItemAt(DWORD index) const;

    // The first item, from which a walk follows `next` to null; null if the list is empty.
    const Node* First() const { return header_ == nullptr ? nullptr : header_->first; }

    // Frees all items. May be called on an empty list and again.
    void Clear();

  private:
    struct Header {
        Node* first = nullptr;
        Node* last = nullptr;
    };

    Header* header_;  // null after Clear
    DWORD count_ = 0;
};
