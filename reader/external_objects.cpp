#include "reader/external_objects.h"

#include "plugin/failure.h"
#include "plugin/link_table.h"
#include "plugin/state.h"
#include "plugin/status.h"
#include "reader/ole_objects.h"
#include "reader/presentation.h"

namespace ppt {

namespace {

constexpr std::uint16_t kTargetInstance = 1;

// Position of an object among the children of the list and among its hyperlinks.
struct Ordinals {
    std::int32_t object = 0;
    std::int32_t hyperlink = 0;
};

LinkRecord new_template(PptRecord& container, const Ordinals& at) {
    LinkRecord record;
    record.object_list_ordinal = at.object;
    record.holder_persist_id = container.owner->current_user_edit().document_persist_id;
    return record;
}

// [MS-PPT] ExHyperlinkContainer. A template is added even when there is no target: the document
// properties may hold one.
void v_addHyperlinkObject(PptRecord& container, const Ordinals& at) {
    LinkRecord record = new_template(container, at);
    while (PptRecord* child = container.ps_nextChild()) {
        if (child->is(RT_CString) && child->header.instance() == kTargetInstance) {
            record.file_name = child->n_getAnsiString(kLinkTextLimit);
        } else if (child->is(RT_ExternalHyperlinkAtom)) {
            record.external_object_id = child->u32_at(0);
        }
        container.v_skipChild(*child);
    }
    record.record_type = RT_ExternalHyperlink;
    record.hyperlink_ordinal = at.hyperlink;
    v_addExternalObject(&record);
}

// [MS-PPT] ExVideoContainer, ExMIDIAudioContainer, ExWAVAudioLinkContainer. A path of another
// instance, or an empty one, is no link.
void v_addMediaObject(PptRecord& container, const Ordinals& at) {
    LinkRecord record = new_template(container, at);
    record.record_type = container.header.type;
    record.external_object_id = required_child(container, RT_ExternalMediaAtom).u32_at(0);
    PptRecord& path = required_child(container, RT_CString);
    record.stream_position = path.position;
    if (path.header.instance() == 0) {
        record.file_name = path.n_getAnsiString(kLinkTextLimit);
    }
    container.v_skipChild(path);
    if (!record.file_name.empty()) {
        v_addExternalObject(&record);
    }
    container.v_skipRest();
}

void add_videos_of_list(PptRecord& container, const Ordinals& at) {
    while (PptRecord* child = container.ps_nextChild()) {
        if (child->is(RT_ExternalVideo)) {
            v_addMediaObject(*child, at);
        } else {
            container.v_skipChild(*child);
        }
    }
}

void add_movie(PptRecord& container, const Ordinals& at) {
    v_addMediaObject(required_child(container, RT_ExternalVideo), at);
    container.v_skipRest();
}

// [MS-PPT] ExOleLinkContainer, ExControlContainer.
void v_walkOleObjects(PptRecord& container, OleObjects& ole_objects, const Ordinals& at) {
    while (PptRecord* child = container.ps_nextChild()) {
        if (child->is(RT_ExternalOleObjectAtom)) {
            ole_objects.v_addOleLinkObject(*child, at.object);
        }
        container.v_skipChild(*child);
    }
}

void add_object(PptRecord& list, PptRecord& object, OleObjects& ole_objects, Ordinals& at) {
    switch (object.header.type) {
    case RT_ExternalOleLink:
    case RT_ExternalOleControl:
        v_walkOleObjects(object, ole_objects, at);
        break;
    case RT_ExternalHyperlink:
        v_addHyperlinkObject(object, at);
        ++at.hyperlink;
        break;
    case RT_ExternalVideoList:
        add_videos_of_list(object, at);
        break;
    case RT_ExternalAviMovie:
    case RT_ExternalMciMovie:
        add_movie(object, at);
        break;
    case RT_ExternalMidiAudio:
    case RT_ExternalWavAudioLink:
        v_addMediaObject(object, at);
        break;
    default:
        list.v_skipChild(object);
        break;
    }
    ++at.object;
}

} // namespace

std::int32_t j_walkExternalObjects(PptRecord* list) {
    if (list == nullptr) {
        throw static_cast<int>(status::kNullArgument);
    }
    return status_or(status::kDamaged, [list] {
        Ordinals at;
        OleObjects ole_objects;
        while (PptRecord* object = list->ps_nextChild()) {
            add_object(*list, *object, ole_objects, at);
        }
        return status::kSuccess;
    });
}

} // namespace ppt
