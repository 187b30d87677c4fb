#include "kernel/OSList.h"

OSListObj::~OSListObj() {
    if (list_ != nullptr) list_->Unlink(this);
}

bool OSListObj::IsKey(const char*) {
    return false;
}

void OSListObj::GiveUpChildren(OSListBase&) {}

bool OSListObj::OwnedByList() const {
    return true;
}

void OSListBase::Append(OSListObj* element) {
    element->list_ = this;
    element->previous_ = last_;
    element->next_ = nullptr;
    (last_ != nullptr ? last_->next_ : first_) = element;
    last_ = element;
    ++size_;
}

void OSListBase::Prepend(OSListObj* element) {
    element->list_ = this;
    element->next_ = first_;
    element->previous_ = nullptr;
    (first_ != nullptr ? first_->previous_ : last_) = element;
    first_ = element;
    ++size_;
}

void OSListBase::Unlink(OSListObj* element) {
    (element->previous_ != nullptr ? element->previous_->next_ : first_) = element->next_;
    (element->next_ != nullptr ? element->next_->previous_ : last_) = element->previous_;
    element->next_ = element->previous_ = nullptr;
    element->list_ = nullptr;
    --size_;
}

void OSListBase::Remove(OSListObj* element) {
    Unlink(element);
    OSListBase doomed;
    doomed.Append(element);
}

void OSListBase::Clear() {
    while (first_ != nullptr) {
        OSListObj* element = first_;
        Unlink(element);
        if (!element->OwnedByList()) continue;
        element->GiveUpChildren(*this);
        delete element;
    }
}

void OSListBase::Splice(OSListBase& from) {
    if (from.first_ == nullptr) return;
    for (OSListObj* element = from.first_; element != nullptr; element = element->next_)
        element->list_ = this;
    from.first_->previous_ = last_;
    (last_ != nullptr ? last_->next_ : first_) = from.first_;
    last_ = from.last_;
    size_ += from.size_;
    from.first_ = from.last_ = nullptr;
    from.size_ = 0;
}
