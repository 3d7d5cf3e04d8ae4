// The registry of open elements; see open_compound_file.h for who owns whom.
#include "platform/posix/open_compound_file.h"

namespace platform {

bool OpenCompoundFile::is_open(compound_file::EntryId entry) const {
    const auto found = open_.find(entry);
    return found != open_.end() && !found->second->is_reverted();
}

void OpenCompoundFile::claim(OpenElement& element) {
    open_[element.entry()] = &element;
}

void OpenCompoundFile::withdraw(const OpenElement& element) noexcept {
    // A reverted element may have lost its place to a later opening of the same entry.
    const auto found = open_.find(element.entry());
    if (found != open_.end() && found->second == &element) {
        open_.erase(found);
    }
}

void OpenCompoundFile::revert(compound_file::EntryId entry) {
    const auto found = open_.find(entry);
    if (found != open_.end()) {
        found->second->revert();
    }
}

bool OpenElement::is_reverted() const {
    for (const OpenElement* element = this; element != nullptr; element = element->parent_.get()) {
        if (element->reverted_) {
            return true;
        }
    }
    return false;
}

bool OpenElement::is_inside(compound_file::EntryId entry) const {
    for (const OpenElement* element = this; element != nullptr; element = element->parent_.get()) {
        if (element->entry_ == entry) {
            return true;
        }
    }
    return false;
}

} // namespace platform
