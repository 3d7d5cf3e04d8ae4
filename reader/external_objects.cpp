#include "reader/external_objects.h"

#include "plugin/failure.h"
#include "plugin/link_table.h"
#include "plugin/state.h"
#include "plugin/status.h"
#include "reader/keep_going.h"
#include "reader/ole_objects.h"
#include "reader/presentation.h"

#include <utility>
#include <vector>

namespace ppt {

namespace {

constexpr std::uint16_t kTargetInstance = 1;

// Position of an object among the children of the list and among its hyperlinks.
struct Ordinals {
    std::int32_t object = 0;
    std::int32_t hyperlink = 0;
};

using Templates = std::vector<LinkRecord>;

LinkRecord new_template(PptRecord& container, const Ordinals& at) {
    LinkRecord record;
    record.object_list_ordinal = at.object;
    record.holder_persist_id = container.owner->current_user_edit().document_persist_id;
    return record;
}

// [MS-PPT] ExHyperlinkContainer. A template is added even when there is no target: the document
// properties may hold one.
void v_addHyperlinkObject(PptRecord& container, const Ordinals& at, Templates& found) {
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
    found.push_back(std::move(record));
}

// What stands behind a path is no link's, but a rewrite of the object walks it: with the letter "k"
// an object with damage there is left out, since it would cost the whole rewrite.
void v_passRest(PptRecord& container) {
    while (state().keeps_going()) {
        PptRecord* const child = container.ps_nextChild();
        if (child == nullptr) {
            return;
        }
        container.v_skipChild(*child);
    }
    container.v_skipRest();
}

// [MS-PPT] ExVideoContainer, ExMIDIAudioContainer, ExWAVAudioLinkContainer. A path of another
// instance, or an empty one, is no link.
void v_addMediaObject(PptRecord& container, const Ordinals& at, Templates& found) {
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
        found.push_back(std::move(record));
    }
    v_passRest(container);
}

void add_videos_of_list(PptRecord& container, const Ordinals& at, Templates& found) {
    while (PptRecord* child = container.ps_nextChild()) {
        if (child->is(RT_ExternalVideo)) {
            v_addMediaObject(*child, at, found);
        } else {
            container.v_skipChild(*child);
        }
    }
}

void add_movie(PptRecord& container, const Ordinals& at, Templates& found) {
    v_addMediaObject(required_child(container, RT_ExternalVideo), at, found);
    v_passRest(container);
}

// [MS-PPT] ExOleLinkContainer, ExControlContainer.
void v_walkOleObjects(PptRecord& container, OleObjects& ole_objects, const Ordinals& at,
                      Templates& found) {
    while (PptRecord* child = container.ps_nextChild()) {
        if (child->is(RT_ExternalOleObjectAtom)) {
            ole_objects.v_addOleLinkObject(*child, at.object, found);
        }
        container.v_skipChild(*child);
    }
}

void read_object(PptRecord& list, PptRecord& object, OleObjects& ole_objects, const Ordinals& at,
                 Templates& found) {
    switch (object.header.type) {
    case RT_ExternalOleLink:
    case RT_ExternalOleControl:
        v_walkOleObjects(object, ole_objects, at, found);
        break;
    case RT_ExternalHyperlink:
        v_addHyperlinkObject(object, at, found);
        break;
    case RT_ExternalVideoList:
        add_videos_of_list(object, at, found);
        break;
    case RT_ExternalAviMovie:
    case RT_ExternalMciMovie:
        add_movie(object, at, found);
        break;
    case RT_ExternalMidiAudio:
    case RT_ExternalWavAudioLink:
        v_addMediaObject(object, at, found);
        break;
    default:
        list.v_skipChild(object);
        break;
    }
}

UnreadKind kind_of(const PptRecord* object) {
    switch (object == nullptr ? 0 : object->header.type) {
    case RT_ExternalOleLink:
    case RT_ExternalOleControl:
        return UnreadKind::ole;
    case RT_ExternalHyperlink:
        return UnreadKind::hyperlink;
    case RT_ExternalVideoList:
    case RT_ExternalAviMovie:
    case RT_ExternalMciMovie:
        return UnreadKind::movie;
    case RT_ExternalMidiAudio:
        return UnreadKind::midi;
    case RT_ExternalWavAudioLink:
        return UnreadKind::sound;
    default:
        return UnreadKind::object;
    }
}

void walk_objects(PptRecord& list) {
    Ordinals at;
    OleObjects ole_objects;
    Templates found; // in one object, which counts only when all of it could be read
    const auto pass = [&](const PptRecord* object) {
        found.clear();
        ++at.object;
        at.hyperlink += object != nullptr && object->is(RT_ExternalHyperlink) ? 1 : 0;
    };
    const auto read = [&](PptRecord& object) {
        read_object(list, object, ole_objects, at, found);
        for (LinkRecord& record : found) {
            v_addExternalObject(&record);
        }
        pass(&object);
    };
    const auto leave_out = [&](const PptRecord* object, std::int32_t status) {
        pass(object);
        state().unread.add({status, kind_of(object), at.object});
    };
    while (b_readNextChild(list, read, leave_out)) {
    }
}

} // namespace

std::int32_t j_walkExternalObjects(PptRecord* list) {
    if (list == nullptr) {
        throw static_cast<int>(status::kNullArgument);
    }
    return status_or(status::kDamaged, [list] {
        walk_objects(*list);
        return status::kSuccess;
    });
}

} // namespace ppt
