#include "rewriter/legacy_tags.h"

#include "linkid/legacy_tags.h"

namespace ppt {

namespace {

std::int32_t n_dropLegacyTags(PptRecord& tags, RewriteCopy& copy) {
    std::int32_t sum = 0;
    while (PptRecord* child = tags.ps_nextChild()) {
        if (child->is(RT_ProgStringTag) && legacy_tag_value(*child)) {
            sum += n_dropRecord(copy, *child);
        } else {
            v_writeRecord(copy, *child);
        }
    }
    return sum;
}

} // namespace

std::int32_t n_rewriteTags(PptRecord& tags, RewriteCopy& copy) {
    const std::uint32_t header_position = n_openContainer(copy, tags);
    const std::int32_t change = n_dropLegacyTags(tags, copy);
    const bool nothing_left = std::int64_t{tags.header.length} + change == 0;
    if (nothing_left) {
        copy.writer.seek(header_position);
        return n_dropRecord(copy, tags);
    }
    v_fixRecordLength(copy, tags, header_position, change);
    return change;
}

} // namespace ppt
