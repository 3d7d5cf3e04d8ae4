#include "rewriter/shape_rewriter.h"

#include "common_new/common/conversion.h"
#include "reader/shape_options.h"
#include "rewriter/client_text_rewriter.h"
#include "rewriter/page_links.h"

#include <optional>
#include <utility>

namespace ppt {

namespace {

// A table whose name does not stand at a certain place is written as it is.
std::int32_t n_rewriteShapeOptions(PptRecord& table, const LinkRecord& link, RewriteCopy& copy) {
    const ShapeOptions options(table.header.instance(), table.body);
    std::int32_t change = 0;
    if (options.links_picture()) {
        std::optional<bytes::Bytes> body =
            options.with_picture_name(wide_from_ansi(link.file_name));
        if (body) {
            change = n_setBody(table, std::move(*body));
            copy.written_links[link.table_index] = true;
        }
    }
    v_writeRecord(copy, table);
    return change;
}

} // namespace

std::int32_t n_rewriteShape(PptRecord& shape, const LinkRecord& link, RewriteCopy& copy) {
    std::int32_t sum = 0;
    while (PptRecord* child = shape.ps_nextChild()) {
        if (child->is(OfficeArtFOPT) && link.stream_position == child->position) {
            sum += n_rewriteShapeOptions(*child, link, copy);
        } else if (child->is(OfficeArtClientTextbox) && b_liesInside(link, *child) &&
                   b_rewritesTexts()) {
            sum += n_rewriteClientText(*child, link, copy);
        } else {
            v_writeRecord(copy, *child);
        }
    }
    return sum;
}

} // namespace ppt
