#include "rewriter/document_rewriter.h"

#include "plugin/link_table.h"
#include "plugin/status.h"
#include "reader/keep_going.h"

namespace ppt {

namespace {

constexpr std::uint16_t kTargetInstance = 1;

// Friendly name (instance 0) and target (instance 1) both become the new path; a location keeps its
// text. A container without a target gets one behind its last child.
std::int32_t n_rewriteHyperlink(PptRecord& container, const LinkRecord& link, RewriteCopy& copy) {
    const std::uint32_t header_position = n_openContainer(copy, container);
    std::int32_t sum = 0;
    bool has_target = false;
    while (PptRecord* child = container.ps_nextChild()) {
        const bool is_string = child->is(RT_CString) && !child->header.is_container();
        if (is_string && child->header.instance() <= kTargetInstance) {
            has_target = has_target || child->header.instance() == kTargetInstance;
            sum += n_replaceString(*child, link.file_name, copy);
        } else {
            v_writeRecord(copy, *child);
        }
    }
    if (!has_target) {
        PptRecord target(container.owner);
        target.header = {kTargetInstance << 4, RT_CString, 0};
        sum += n_replaceString(target, link.file_name, copy) +
               static_cast<std::int32_t>(kRecordHeaderSize);
    }
    v_fixRecordLength(copy, container, header_position, sum);
    return sum;
}

// The path is the second child, behind the media atom.
std::int32_t n_rewriteMediaContainer(PptRecord& container, const LinkRecord& link,
                                     RewriteCopy& copy) {
    const std::uint32_t header_position = n_openContainer(copy, container);
    v_writeRecord(copy, required_child(container));
    const std::int32_t change = n_replaceString(required_child(container), link.file_name, copy);
    while (PptRecord* child = container.ps_nextChild()) {
        v_writeRecord(copy, *child);
    }
    v_fixRecordLength(copy, container, header_position, change);
    return change;
}

std::int32_t rewrite_movie(PptRecord& movie, const LinkRecord& link, RewriteCopy& copy) {
    const std::uint32_t header_position = n_openContainer(copy, movie);
    const std::int32_t change = n_rewriteMediaContainer(required_child(movie), link, copy);
    while (PptRecord* child = movie.ps_nextChild()) {
        v_writeRecord(copy, *child);
    }
    v_fixRecordLength(copy, movie, header_position, change);
    return change;
}

std::int32_t rewrite_video_list(PptRecord& list, const LinkRecord& link, RewriteCopy& copy) {
    const std::uint32_t header_position = n_openContainer(copy, list);
    std::int32_t sum = 0;
    while (PptRecord* child = list.ps_nextChild()) {
        if (child->is(RT_ExternalVideo)) {
            sum += n_rewriteMediaContainer(*child, link, copy);
        } else {
            v_writeRecord(copy, *child);
        }
    }
    v_fixRecordLength(copy, list, header_position, sum);
    return sum;
}

std::int32_t rewrite_object(PptRecord& object, const LinkRecord& link, RewriteCopy& copy) {
    switch (object.header.type) {
    case RT_ExternalHyperlink:
        return n_rewriteHyperlink(object, link, copy);
    case RT_ExternalAviMovie:
    case RT_ExternalMciMovie:
        return rewrite_movie(object, link, copy);
    case RT_ExternalMidiAudio:
    case RT_ExternalWavAudioLink:
        return n_rewriteMediaContainer(object, link, copy);
    case RT_ExternalVideoList:
        return rewrite_video_list(object, link, copy);
    default:
        v_writeRecord(copy, object);
        return 0;
    }
}

// The next object of the list. With the letter "k" what the load could not read as objects is
// written as it is, up to the end of the list.
PptRecord* next_object(RewriteCopy& copy, PptRecord& list) {
    try {
        return list.ps_nextChild();
    } catch (int failure) {
        if (!b_mayLeaveOut(failure)) {
            throw;
        }
    }
    copy.loaded.v_seekDocument(list.position + kRecordHeaderSize + list.consumed);
    const std::uint32_t rest = list.header.length - list.consumed;
    copy.loaded.v_requireDocumentBytes(rest);
    require_success(copy.writer.copy(copy.loaded, rest));
    copy.v_notePositions();
    return nullptr;
}

std::int32_t n_rewriteExObjList(RewriteCopy& copy, PptRecord& list) {
    const std::uint32_t header_position = n_openContainer(copy, list);
    std::int32_t sum = 0;
    std::int32_t ordinal = 0;
    while (PptRecord* object = next_object(copy, list)) {
        if (const LinkRecord* link = ps_findChangedLinkByOrdinal(ordinal)) {
            sum += rewrite_object(*object, *link, copy);
        } else {
            v_writeRecord(copy, *object);
        }
        ++ordinal;
    }
    v_fixRecordLength(copy, list, header_position, sum);
    return sum;
}

} // namespace

std::int32_t n_rewriteDocument(RewriteCopy& copy, std::uint32_t old_offset) {
    copy.loaded.v_seekDocument(old_offset);
    PptRecord document(&copy.loaded);
    document.v_readRecord();
    if (!document.is(RT_Document)) {
        throw static_cast<int>(status::kDamaged);
    }
    const std::uint32_t header_position = n_openContainer(copy, document);
    PptRecord* child = &required_child(document);
    while (!child->is_container(RT_ExternalObjectList) && !child->is(RT_EndDocumentAtom)) {
        v_writeRecord(copy, *child);
        child = &required_child(document);
    }
    const std::int32_t change =
        child->is(RT_ExternalObjectList) ? n_rewriteExObjList(copy, *child) : 0;
    v_fixRecordLength(copy, document, header_position, change);
    return change;
}

} // namespace ppt
