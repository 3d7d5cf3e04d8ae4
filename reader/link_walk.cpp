#include "reader/link_walk.h"

#include "common_new/common/storage.h"
#include "linkid/legacy_tags.h"
#include "linkid/link_id_tag.h"
#include "plugin/failure.h"
#include "plugin/link_table.h"
#include "plugin/state.h"
#include "plugin/status.h"
#include "reader/drawing_walk.h"
#include "reader/external_objects.h"
#include "reader/keep_going.h"
#include "reader/record.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace ppt {

namespace {

constexpr std::uint16_t kSlideInstance = static_cast<std::uint16_t>(PageKind::slide);
constexpr std::uint16_t kNotesInstance = static_cast<std::uint16_t>(PageKind::notes);

// Pages do not overlap, so walking them all is one pass over the stream. Room is left for ids
// without an object, which lead to what stands at offset 0.
constexpr std::uint64_t kMostPasses = 16;

// By the instance of the page's slide list.
UnreadKind kind_in(std::uint16_t list) {
    constexpr UnreadKind kKinds[] = {UnreadKind::slide, UnreadKind::master, UnreadKind::notes};
    return list <= kNotesInstance ? kKinds[list] : UnreadKind::slide;
}

class DocumentWalk {
  public:
    DocumentWalk(PptPresentation& presentation, std::int32_t flags)
        : presentation_(presentation)
        , links_wanted_((flags & kFlagLinks) != 0)
        , target_id_wanted_((flags & kFlagTargetFileId) != 0) {}

    std::int32_t walk();

    // Gives the ids of the pages' own tags to the links, once all links are known.
    void assign_tag_ids();

  private:
    // The ids that one container of tags holds.
    struct PageTags {
        std::int32_t slide_index = 0;
        std::vector<std::string> entries;
    };

    // What one page changes, to be taken back when the page is left out.
    struct Mark {
        std::size_t links;
        std::size_t tags;
        id64 target_file_id;
        bool ids_in_document;
    };

    bool is_object_list(const PptRecord& child) const;
    void walk_slide_list(PptRecord& list);
    void read_list_child(PptRecord& list, PptRecord& child);
    void begin_page(std::uint16_t instance);
    // Of the last page begun in the list; 0 before its first.
    std::int32_t page_number_in(std::uint16_t list) const {
        return list <= kNotesInstance ? pages_of_kind_[list] : 0;
    }
    Mark mark() const;
    void leave_out(const Mark& mark, const UnreadObject& object);
    void v_walkSlide(std::uint16_t instance, const PptRecord& atom);
    void seek_page(std::uint32_t persist_id);
    void require_few_passes() const;
    void walk_page_children(PptRecord& page, std::uint32_t persist_id, bool is_first_slide);
    void walk_drawing(PptRecord& drawing, std::uint32_t persist_id);
    void read_name_tag(const PptRecord& name, std::uint32_t persist_id);
    void read_link_number_tags(PptRecord& tags);

    PptPresentation& presentation_;
    bool links_wanted_;
    bool target_id_wanted_;
    std::int32_t running_index_ = -1;
    std::array<std::int32_t, 3> pages_of_kind_{};
    bool objects_walked_ = false;
    bool first_slide_walked_ = false;
    std::optional<std::uint32_t> page_offset_; // of the page that is being walked
    std::uint64_t page_bytes_ = 0;             // of all pages walked
    std::uint64_t tag_bytes_ = 0;              // of all tags kept
    std::uint32_t shape_count_ = 0;            // that the drawing of the current page claims
    std::vector<PageTags> tags_;
};

std::int32_t DocumentWalk::walk() {
    presentation_.v_seekDocumentContainer();
    PptRecord document(&presentation_);
    document.v_readHeader();
    if (!document.is(RT_Document)) {
        throw static_cast<int>(status::kNotAPresentation);
    }
    PptRecord* child = &required_child(document);
    for (; child != nullptr; child = document.ps_nextChild()) {
        if (child->is(RT_EndDocumentAtom)) {
            break;
        }
        std::int32_t status = status::kSuccess;
        if (is_object_list(*child)) {
            objects_walked_ = true;
            status = j_walkExternalObjects(child);
        } else if (child->is(RT_SlideListWithText)) {
            walk_slide_list(*child);
        } else {
            document.v_skipChild(*child);
        }
        if (status != status::kSuccess) {
            return status;
        }
    }
    return status::kSuccess;
}

// The rewrite finds an object by its number in the first list, so no other counts.
bool DocumentWalk::is_object_list(const PptRecord& child) const {
    return child.is_container(RT_ExternalObjectList) && links_wanted_ && !objects_walked_;
}

void DocumentWalk::walk_slide_list(PptRecord& list) {
    const std::uint16_t instance = list.header.instance();
    // Without links only the first slide matters, for the presentation's own id in its name.
    const bool wanted =
        links_wanted_ || (instance == kSlideInstance && target_id_wanted_ && !first_slide_walked_);
    const auto read = [&](PptRecord& child) { read_list_child(list, child); };
    for (bool goes_on = wanted; goes_on;) {
        const Mark before = mark();
        page_offset_.reset();
        const auto left_out = [&](const PptRecord* child, std::int32_t status) {
            leave_out(before, {status, kind_in(instance), child ? page_number_in(instance) : 0});
        };
        goes_on = b_readNextChild(list, read, left_out) && (links_wanted_ || !first_slide_walked_);
    }
    list.v_skipRest();
    if (instance <= kNotesInstance) {
        presentation_.slide_list_indexes[instance] = running_index_;
    }
}

void DocumentWalk::read_list_child(PptRecord& list, PptRecord& child) {
    const std::uint16_t instance = list.header.instance();
    if (child.is(RT_SlidePersistAtom)) {
        begin_page(instance);
        v_walkSlide(instance, child);
    } else if (child.is(RT_InteractiveInfo) && links_wanted_) {
        DrawingCounters counters;
        counters.group = 0;
        ps_addInteractiveLink(child, running_index_, counters);
    } else {
        list.v_skipChild(child);
    }
}

void DocumentWalk::begin_page(std::uint16_t instance) {
    ++running_index_;
    Page page;
    if (instance <= kNotesInstance) {
        page.kind = static_cast<PageKind>(instance);
        page.number = ++pages_of_kind_[instance];
    }
    presentation_.pages.push_back(page);
}

DocumentWalk::Mark DocumentWalk::mark() const {
    const PluginState& plugin = state();
    return {plugin.links.links().size(), tags_.size(), plugin.target_file_id,
            plugin.ids_in_document};
}

// The page keeps its number; nothing of it is in the tables, and the rewrite leaves it as it is.
void DocumentWalk::leave_out(const Mark& mark, const UnreadObject& object) {
    require_few_passes();
    PluginState& plugin = state();
    plugin.links.cut_links(mark.links);
    tags_.resize(mark.tags);
    plugin.target_file_id = mark.target_file_id;
    plugin.ids_in_document = mark.ids_in_document;
    plugin.unread.add(object);
    if (page_offset_) {
        presentation_.unread_pages.insert(*page_offset_);
    }
}

void DocumentWalk::require_few_passes() const {
    const bool pages_overlap = page_bytes_ > kMostPasses * presentation_.readable_size();
    if (pages_overlap) {
        throw static_cast<int>(status::kDamaged);
    }
}

// An id that no directory lists leads to what stands at offset 0, unless such a page is left out.
void DocumentWalk::seek_page(std::uint32_t persist_id) {
    PersistDirectory& directory = presentation_.persist_directory();
    directory.v_noteObjectAtStart(persist_id);
    const bool leave_out = state().keeps_going() && !directory.is_listed(persist_id);
    const std::uint32_t offset = leave_out ? kNoOffset : directory.n_objectOffset(persist_id);
    presentation_.v_seekDocument(offset);
    page_offset_ = offset;
}

// The page's record stands elsewhere in the stream; the slide list is read on from where it was.
void DocumentWalk::v_walkSlide(std::uint16_t instance, const PptRecord& atom) {
    const bool is_first_slide = instance == kSlideInstance && !first_slide_walked_;
    first_slide_walked_ = first_slide_walked_ || is_first_slide;
    const std::uint32_t persist_id = atom.u32_at(0);
    const std::uint32_t list_position = presentation_.n_tellDocument();
    seek_page(persist_id);
    PptRecord page(&presentation_);
    page.v_readRecord();
    if (page.header.is_container()) {
        presentation_.v_requireDocumentBytes(page.header.length);
    }
    page_bytes_ += page.header.length;
    require_few_passes();
    if (page.header.length != 0) {
        walk_page_children(page, persist_id, is_first_slide);
    }
    presentation_.v_seekDocument(list_position);
}

void DocumentWalk::walk_page_children(PptRecord& page, std::uint32_t persist_id,
                                      bool is_first_slide) {
    shape_count_ = 0;
    page.v_skipChild(required_child(page));
    while (PptRecord* child = page.ps_nextChild()) {
        if (child->is(RT_Drawing) && links_wanted_) {
            walk_drawing(*child, persist_id);
        } else if (child->is(RT_CString) && target_id_wanted_ && is_first_slide) {
            read_name_tag(*child, persist_id);
            page.v_skipChild(*child);
        } else if (child->is(RT_ProgTags) && child->header.length >= kShortestTagContainer &&
                   links_wanted_ && shape_count_ != 0) {
            read_link_number_tags(*child);
        } else {
            page.v_skipChild(*child);
        }
    }
}

void DocumentWalk::walk_drawing(PptRecord& drawing, std::uint32_t persist_id) {
    PptRecord& container = required_child(drawing, OfficeArtDgContainer);
    shape_count_ = required_child(container, OfficeArtFDG).u32_at(0);
    if (shape_count_ != 0) {
        DrawingWalk(persist_id, running_index_).v_walkShapeGroup(container);
    }
    container.v_skipRest();
    drawing.v_skipRest();
}

void DocumentWalk::read_name_tag(const PptRecord& name, std::uint32_t persist_id) {
    PluginState& plugin = state();
    const std::string text = name.n_getAnsiString(kLinkTextLimit);
    if (const char* tag = ps_findLinkIdTag(text.c_str())) {
        id64 id{};
        v_id64FromStr(&id, tag + kLinkIdTag.size());
        v_id64Move(&plugin.target_file_id, &id);
        plugin.ids_in_document = true;
    }
    presentation_.tag_slide_persist_id = persist_id;
}

void DocumentWalk::read_link_number_tags(PptRecord& tags) {
    constexpr std::uint64_t kTagsWithoutShape = 20;
    tag_bytes_ += tags.header.length;
    const bool pages_overlap = tag_bytes_ > presentation_.readable_size();
    if (pages_overlap) {
        throw static_cast<int>(status::kDamaged);
    }
    PageTags page{running_index_, {}};
    if (n_readLinkNumberTags(tags, shape_count_ + kTagsWithoutShape, page.entries) > 0) {
        state().ids_in_document = true;
        tags_.push_back(std::move(page));
    }
}

void DocumentWalk::assign_tag_ids() {
    if (tags_.empty()) {
        return;
    }
    LegacyTagIds ids(state().links);
    for (const PageTags& page : tags_) {
        ids.v_assignTagIds(page.slide_index, page.entries);
    }
}

} // namespace

std::int32_t j_findLinks(PptPresentation& presentation, std::int32_t flags) {
    return status_or(status::kDamaged, [&] {
        DocumentWalk walk(presentation, flags);
        const std::int32_t status = walk.walk();
        if (status == status::kSuccess) {
            walk.assign_tag_ids();
        }
        return status;
    });
}

} // namespace ppt
