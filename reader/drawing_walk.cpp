#include "reader/drawing_walk.h"

#include "plugin/link_table.h"
#include "plugin/status.h"
#include "reader/client_text.h"
#include "reader/shape_options.h"

namespace ppt {

namespace {

constexpr std::uint8_t kActionHyperlink = 4;
constexpr std::uint8_t kNoJump = 0;
constexpr std::uint8_t kLinkToSlide = 7;

// Places a template on a page; a shape that is not numbered leaves the number that it held.
void place_on_page(LinkRecord& link, std::int32_t running_index, DrawingCounters& counters) {
    link.slide_index = running_index;
    if (counters.numbers_links()) {
        link.number_on_slide = counters.number_on_slide++;
    }
}

} // namespace

void DrawingWalk::v_walkShapeGroup(PptRecord& container) {
    while (PptRecord* child = container.ps_nextChild()) {
        if (child->is(OfficeArtSpgrContainer)) {
            if (depth_ == kDeepestGroup) {
                throw static_cast<int>(status::kDamaged);
            }
            ++counters_.group;
            ++depth_;
            v_walkShapeGroup(*child);
            --depth_;
        } else if (child->is(OfficeArtSpContainer)) {
            v_walkShape(*child);
        } else {
            container.v_skipChild(*child);
        }
    }
}

void DrawingWalk::v_walkShape(PptRecord& shape) {
    std::uint16_t shape_type = 0;
    while (PptRecord* child = shape.ps_nextChild()) {
        switch (child->header.type) {
        case OfficeArtFSP:
            shape_type = child->header.instance();
            shape.v_skipChild(*child);
            break;
        case OfficeArtFOPT:
            v_addPictureLink(*child, shape_type);
            shape.v_skipChild(*child);
            break;
        case OfficeArtClientTextbox:
            v_walkClientText(*child);
            break;
        case OfficeArtClientData:
            v_walkClientData(*child);
            break;
        default:
            shape.v_skipChild(*child);
            break;
        }
    }
}

// A linked picture, fill picture or line picture.
void DrawingWalk::v_addPictureLink(const PptRecord& options, std::uint16_t shape_type) {
    if (shape_type == 0) {
        return;
    }
    const ShapeOptions table(options.header.instance(), options.body);
    if (!table.links_picture() || !table.finds_picture_name()) {
        return;
    }
    LinkRecord record;
    record.file_name = table.picture_name();
    record.stream_position = options.position;
    record.object_list_ordinal = -1;
    record.holder_persist_id = page_persist_id_;
    record.slide_index = running_index_;
    LinkRecord* added = ps_addLinkRecord(&record);
    if (counters_.numbers_links() && table.name_property() == kPictureName) {
        added->number_on_slide = counters_.number_on_slide++;
    }
}

// Each link of a text box is followed by the range of text that carries it.
void DrawingWalk::v_walkClientText(PptRecord& text_box) {
    ClientText text(page_persist_id_);
    LinkRecord* link = nullptr;
    while (PptRecord* child = text_box.ps_nextChild()) {
        switch (child->header.type) {
        case RT_TextHeaderAtom:
            text.set_type(child->u32_at(0));
            break;
        case RT_TextCharsAtom:
        case RT_TextBytesAtom:
            text.keep(*child);
            break;
        case RT_InteractiveInfo:
            text.complete(link);
            link = ps_addInteractiveLink(*child, running_index_, counters_);
            if (link != nullptr) {
                link->text_range_start = 0;
                link->text_range_end = text.length();
            }
            continue;
        case RT_TextInteractiveInfoAtom:
            if (link != nullptr) {
                link->text_range_start = static_cast<std::int32_t>(child->u32_at(0));
                link->text_range_end = static_cast<std::int32_t>(child->u32_at(4));
            }
            break;
        default:
            break;
        }
        text_box.v_skipChild(*child);
    }
    text.complete(link);
}

void DrawingWalk::v_walkClientData(PptRecord& client_data) {
    while (PptRecord* child = client_data.ps_nextChild()) {
        if (child->is(RT_InteractiveInfo)) {
            ps_addInteractiveLink(*child, running_index_, counters_);
            continue;
        }
        if (child->is(RT_ExternalObjectRefAtom)) {
            add_external_object(*child, client_data.position);
        }
        client_data.v_skipChild(*child);
    }
}

void DrawingWalk::add_external_object(const PptRecord& reference,
                                      std::uint32_t client_data_position) {
    constexpr std::uint32_t any_type = 0;
    LinkRecord* object = ps_findExternalObject(any_type, reference.u32_at(0));
    if (object != nullptr) {
        place_on_page(*object, running_index_, counters_);
        object->stream_position = client_data_position;
        ps_addLinkRecord(object);
    }
}

LinkRecord* ps_addInteractiveLink(PptRecord& interactive_info, std::int32_t running_index,
                                  DrawingCounters& counters) {
    LinkRecord* added = nullptr;
    while (PptRecord* child = interactive_info.ps_nextChild()) {
        if (child->is(RT_InteractiveInfoAtom)) {
            const bool is_hyperlink = child->u8_at(8) == kActionHyperlink &&
                                      child->u8_at(10) == kNoJump &&
                                      child->u8_at(12) != kLinkToSlide;
            LinkRecord* object = is_hyperlink
                                     ? ps_findExternalObject(RT_ExternalHyperlink, child->u32_at(4))
                                     : nullptr;
            if (object != nullptr) {
                place_on_page(*object, running_index, counters);
                added = ps_addLinkRecord(object);
            }
        }
        interactive_info.v_skipChild(*child);
    }
    return added;
}

} // namespace ppt
