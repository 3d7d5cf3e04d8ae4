#include "rewriter/object_extents.h"

#include "reader/record.h"

#include <algorithm>

namespace ppt {

ObjectExtents::ObjectExtents(const PptPresentation& loaded) {
    for (const StoredUserEdit& edit : loaded.user_edits()) {
        lists_.push_back(edit.offset);
        lists_.push_back(edit.edit.offset_of_persist_directory);
    }
    std::sort(lists_.begin(), lists_.end());
}

void ObjectExtents::add(PptPresentation& loaded, std::uint32_t offset) {
    const std::uint64_t body = std::uint64_t{offset} + kRecordHeaderSize;
    if (body > loaded.document_size()) {
        return;
    }
    RecordHeaderBytes raw{};
    loaded.v_seekDocument(offset);
    loaded.v_readDocument(raw);
    const std::uint64_t end = body + decode_record_header(raw).length;
    if (end <= loaded.document_size()) {
        end_ = std::max(end_, end);
    }
}

bool ObjectExtents::have_list_in(std::uint32_t begin, std::uint32_t end) const {
    const auto first = std::upper_bound(lists_.begin(), lists_.end(), begin);
    return first != lists_.end() && *first < end;
}

} // namespace ppt
