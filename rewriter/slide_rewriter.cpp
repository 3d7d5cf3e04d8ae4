#include "rewriter/slide_rewriter.h"

#include "linkid/legacy_tags.h"
#include "linkid/link_id_tag.h"
#include "plugin/link_table.h"
#include "plugin/state.h"
#include "plugin/status.h"
#include "reader/drawing_walk.h"
#include "reader/utf16.h"
#include "rewriter/legacy_tags.h"
#include "rewriter/page_links.h"
#include "rewriter/shape_rewriter.h"

namespace ppt {

namespace {

class SlideRewrite {
  public:
    SlideRewrite(RewriteCopy& copy, const LinkRecord* link, std::int32_t flags)
        : copy_(copy)
        , link_((flags & kFlagLinks) != 0 ? link : nullptr) {}

    std::int32_t rewrite_child(PptRecord& child);

  private:
    std::int32_t rewrite_drawing(PptRecord& drawing);
    std::int32_t rewrite_drawing_container(PptRecord& container);
    std::int32_t n_rewriteShapeGroup(PptRecord& container);
    std::int32_t rewrite_group(PptRecord& group);
    std::int32_t rewrite_shape(PptRecord& shape);
    void pass_links_of(const PptRecord& shape);
    std::int32_t cut_link_id(PptRecord& text);

    bool holds_link(const PptRecord& record) const {
        return link_ != nullptr && b_liesInside(*link_, record);
    }

    RewriteCopy& copy_;
    const LinkRecord* link_; // the next changed link; null behind the last
    int depth_ = 0;
};

std::int32_t SlideRewrite::rewrite_child(PptRecord& child) {
    const bool drops_ids = state().ids_in_document;
    if (child.is(RT_Drawing) && holds_link(child)) {
        return rewrite_drawing(child);
    }
    if (drops_ids && child.is(RT_CString)) {
        return cut_link_id(child);
    }
    if (drops_ids && child.is_container(RT_ProgTags) &&
        child.header.length >= kShortestTagContainer) {
        return n_rewriteTags(child, copy_);
    }
    v_writeRecord(copy_, child);
    return 0;
}

std::int32_t SlideRewrite::rewrite_drawing(PptRecord& drawing) {
    const std::uint32_t header_position = n_openContainer(copy_, drawing);
    const std::int32_t change =
        rewrite_drawing_container(required_child(drawing, OfficeArtDgContainer));
    while (PptRecord* child = drawing.ps_nextChild()) {
        v_writeRecord(copy_, *child);
    }
    v_fixRecordLength(copy_, drawing, header_position, change);
    return change;
}

std::int32_t SlideRewrite::rewrite_drawing_container(PptRecord& container) {
    const PptRecord& shape_count = required_child(container, OfficeArtFDG);
    if (shape_count.u32_at(0) == 0) {
        v_writeRecord(copy_, container);
        return 0;
    }
    const std::uint32_t header_position = n_openContainer(copy_, container);
    v_writeRecord(copy_, shape_count);
    const std::int32_t change = n_rewriteShapeGroup(container);
    v_fixRecordLength(copy_, container, header_position, change);
    return change;
}

std::int32_t SlideRewrite::n_rewriteShapeGroup(PptRecord& container) {
    std::int32_t sum = 0;
    while (PptRecord* child = container.ps_nextChild()) {
        if (child->is(OfficeArtSpgrContainer) && holds_link(*child)) {
            sum += rewrite_group(*child);
        } else if (child->is(OfficeArtSpContainer) && holds_link(*child)) {
            sum += rewrite_shape(*child);
        } else {
            v_writeRecord(copy_, *child);
        }
    }
    return sum;
}

std::int32_t SlideRewrite::rewrite_group(PptRecord& group) {
    if (depth_ == kDeepestGroup) {
        throw static_cast<int>(status::kDamaged);
    }
    const std::uint32_t header_position = n_openContainer(copy_, group);
    ++depth_;
    const std::int32_t change = n_rewriteShapeGroup(group);
    --depth_;
    v_fixRecordLength(copy_, group, header_position, change);
    return change;
}

std::int32_t SlideRewrite::rewrite_shape(PptRecord& shape) {
    const std::uint32_t header_position = n_openContainer(copy_, shape);
    const std::int32_t change = n_rewriteShape(shape, *link_, copy_);
    v_fixRecordLength(copy_, shape, header_position, change);
    pass_links_of(shape);
    return change;
}

void SlideRewrite::pass_links_of(const PptRecord& shape) {
    do {
        link_ = ps_nextLinkOfHolder(link_->holder_persist_id, true, link_);
    } while (holds_link(shape));
}

// Only a text that holds the tag is written anew, so characters outside the code page survive.
std::int32_t SlideRewrite::cut_link_id(PptRecord& text) {
    std::basic_string<WCHAR> units = utf16_units(text.body);
    const std::size_t old_size = units.size();
    v_stripLinkIdTag(units);
    const std::int32_t change = units.size() < old_size ? n_setBody(text, utf16_bytes(units)) : 0;
    v_writeRecord(copy_, text);
    return change;
}

} // namespace

std::int32_t n_rewriteSlideObject(RewriteCopy& copy, std::uint32_t old_offset,
                                  const LinkRecord* link, std::int32_t flags) {
    copy.loaded.v_seekDocument(old_offset);
    PptRecord object(&copy.loaded);
    object.v_readHeader();
    if (!object.header.is_container()) {
        return 0;
    }
    const std::uint32_t header_position = n_openContainer(copy, object);
    SlideRewrite rewrite(copy, link, flags);
    std::int32_t sum = 0;
    while (PptRecord* child = object.ps_nextChild()) {
        sum += rewrite.rewrite_child(*child);
    }
    v_fixRecordLength(copy, object, header_position, sum);
    return sum;
}

} // namespace ppt
