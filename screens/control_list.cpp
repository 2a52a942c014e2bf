#include "screens/control_list.h"

CControlList::CControlList() : header_(new Header) {}

void CControlList::Append(HWND control) {
    if (header_ == nullptr) {
        header_ = new Header;
    }
    Node* const node = new Node{nullptr, header_->last, control};
    if (header_->last != nullptr) {
        header_->last->next = node;
    }
    header_->last = node;
    if (header_->first == nullptr) {
        header_->first = node;
    }
    ++count_;
}

HWND CControlList::ItemAt(DWORD index) const {
    if (index >= count_) {
        return nullptr;
    }
    const Node* node = First();
    for (; node != nullptr && index > 0; --index) {
        node = node->next;
    }
    return node == nullptr ? nullptr : node->value;
}

void CControlList::Clear() {
    while (header_ != nullptr && header_->last != nullptr) {
        Node* const node = header_->last;
        header_->last = node->prev;
        if (node->prev != nullptr) {
            node->prev->next = nullptr;
        }
        delete node;
    }
    delete header_;
    header_ = nullptr;
    count_ = 0;
}
