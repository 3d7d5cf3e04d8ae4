#include "reader/keep_going.h"

#include "reader/presentation.h"

#include <utility>

namespace ppt {

namespace {

std::uint64_t end_of(const PptRecord& record) {
    return std::uint64_t{record.position} + kRecordHeaderSize + record.header.length;
}

} // namespace

bool b_mayLeaveOut(std::int32_t status) {
    return state().keeps_going() && b_liesInObject(status);
}

bool b_resumeBehind(PptRecord& list, const PptRecord* child) {
    PptPresentation& presentation = *list.owner;
    const std::uint64_t end = end_of(child == nullptr ? list : *child);
    if (end > presentation.document_size() || !std::in_range<std::int32_t>(end)) {
        return false;
    }
    if (child == nullptr) {
        list.consumed = list.header.length;
    }
    presentation.v_seekDocument(static_cast<std::uint32_t>(end));
    return true;
}

} // namespace ppt
