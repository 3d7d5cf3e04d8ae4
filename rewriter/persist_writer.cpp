#include "rewriter/persist_writer.h"

#include "common_new/common/storage.h"
#include "plugin/document_path.h"
#include "plugin/failure.h"
#include "reader/record.h"

#include <algorithm>
#include <unordered_set>

namespace ppt {

namespace {

constexpr std::uint32_t kLongestRun = 4095;        // what 12 bits of an entry's head hold
constexpr std::uint32_t kHighestFirstId = 0xFFFFF; // what the other 20 bits hold

// A record in the copy, found by its moved offset.
struct OldRecord {
    std::uint32_t position = 0;
    std::uint32_t length = 0;

    std::uint64_t end() const { return std::uint64_t{position} + kRecordHeaderSize + length; }
};

OldRecord read_old_record(PptPresentation& presentation, std::uint32_t position) {
    presentation.v_seekDocument(position);
    RecordHeaderBytes raw{};
    presentation.v_readDocument(raw);
    return {position, decode_record_header(raw).length};
}

void write_at(PptPresentation& copy, std::uint32_t position, bytes::View data) {
    copy.v_seekDocument(position);
    require_success(j_writeStream(document_path().c_str(), copy.ps_getDocumentStream(), data.data(),
                                  static_cast<std::int32_t>(data.size())));
}

std::uint32_t moved_unless_zero(const RewriteCopy& copy, std::uint32_t offset) {
    return offset == 0 ? 0 : copy.shifts.moved(offset);
}

// Whether an object, an older user edit or an older persist directory starts at or behind `begin`,
// which is `loaded_begin` in the loaded presentation, or an object reaches over it.
bool belongs_to_something_else(RewriteCopy& copy, std::uint32_t begin, std::uint32_t loaded_begin) {
    if (copy.copy.persist_directory().any_object_in(begin, kNoOffset) ||
        copy.extents.reach_over(loaded_begin)) {
        return true;
    }
    const std::vector<StoredUserEdit>& edits = copy.loaded.user_edits();
    return std::any_of(edits.begin() + 1, edits.end(), [&](const StoredUserEdit& older) {
        return copy.shifts.moved(older.offset) >= begin ||
               moved_unless_zero(copy, older.edit.offset_of_persist_directory) >= begin;
    });
}

// Where the new records stand, and what of the old user edit stays behind them.
struct Place {
    std::uint32_t begin = 0;
    bytes::Bytes kept; // body of the old user edit behind its 28 bytes
};

Place find_place(RewriteCopy& copy, const OldRecord& directory, const OldRecord& edit) {
    // Behind the last record written may stand what a longer stream left there.
    const std::uint64_t end = copy.has_written() ? copy.copy_position : copy.copy.document_size();
    Place place;
    place.begin = static_cast<std::uint32_t>(end);
    const bool edit_ends_stream = edit.end() == end && edit.length >= kUserEditSize;
    if (!edit_ends_stream) {
        return place;
    }
    const std::uint32_t loaded_edit = copy.loaded.current_user().offset_to_current_edit;
    const std::uint32_t loaded_directory =
        copy.loaded.current_user_edit().offset_of_persist_directory;
    const bool directory_before_edit = directory.end() == edit.position;
    if (directory_before_edit &&
        !belongs_to_something_else(copy, directory.position, loaded_directory)) {
        place.begin = directory.position;
    } else if (!belongs_to_something_else(copy, edit.position, loaded_edit)) {
        place.begin = edit.position;
    } else {
        return place;
    }
    place.kept.resize(edit.length - kUserEditSize);
    copy.copy.v_seekDocument(edit.position + kRecordHeaderSize + kUserEditSize);
    copy.copy.v_readDocument(place.kept);
    return place;
}

void append_record(bytes::Bytes& out, RecordType type, bytes::View body) {
    const RecordHeader header{0, type, static_cast<std::uint32_t>(body.size())};
    bytes::append(out, encode_record_header(header));
    bytes::append(out, body);
}

} // namespace

void v_shiftUserEditChain(RewriteCopy& copy) {
    CurrentUser& user = copy.copy.current_user();
    user.offset_to_current_edit = copy.shifts.moved(user.offset_to_current_edit);
    UserEdit& newest = copy.copy.current_user_edit();
    newest.offset_of_last_edit = moved_unless_zero(copy, newest.offset_of_last_edit);
    newest.offset_of_persist_directory =
        moved_unless_zero(copy, newest.offset_of_persist_directory);
    std::unordered_set<std::uint32_t> visited;
    std::uint32_t position = newest.offset_of_last_edit;
    while (position > 0) {
        const bool returned_to_an_edit = !visited.insert(position).second;
        copy.copy.v_seekDocument(position);
        RecordHeaderBytes header{};
        UserEditBytes body{};
        copy.copy.v_readDocument(header);
        copy.copy.v_readDocument(body);
        if (returned_to_an_edit || decode_record_header(header).type != RT_UserEditAtom) {
            throw static_cast<int>(status::kDamaged);
        }
        UserEdit edit = decode_user_edit(body);
        edit.offset_of_last_edit = moved_unless_zero(copy, edit.offset_of_last_edit);
        edit.offset_of_persist_directory =
            moved_unless_zero(copy, edit.offset_of_persist_directory);
        write_at(copy.copy, position + kRecordHeaderSize, encode_user_edit(edit));
        position = edit.offset_of_last_edit;
    }
}

namespace {

// Ids above the highest that can be the first of an entry need one that begins there.
void list_up_to_the_highest(std::vector<bool>& listed) {
    if (listed.size() > kHighestFirstId &&
        std::find(listed.begin() + kHighestFirstId, listed.end(), true) != listed.end()) {
        std::fill(listed.begin() + (kHighestFirstId - 1), listed.end(), true);
    }
}

} // namespace

bytes::Bytes n_buildPersistDirectory(const PersistDirectory& directory,
                                     std::uint32_t first_moved_offset) {
    bytes::Bytes body;
    const std::uint32_t count = static_cast<std::uint32_t>(directory.count());
    std::vector<bool> listed(count, true);
    if (state().keeps_going()) { // what was left out stays without an object
        for (std::uint32_t id = 1; id <= count; ++id) {
            listed[id - 1] = directory.is_listed(id);
        }
    }
    if (first_moved_offset != 0 && count != 0) {
        listed = directory.ids_of_newest_block();
        for (std::uint32_t id = 1; id <= count; ++id) {
            const bool moved = static_cast<std::int32_t>(directory.n_objectOffset(id)) >=
                               static_cast<std::int32_t>(first_moved_offset);
            listed[id - 1] = listed[id - 1] || moved;
        }
    }
    list_up_to_the_highest(listed);
    for (std::uint32_t first = 1; first <= count;) {
        // Higher ids are all in the entry of the highest first id.
        const std::uint32_t end =
            first < kHighestFirstId ? std::min(count + 1, kHighestFirstId) : count + 1;
        std::uint32_t run = 0;
        while (run < kLongestRun && first + run < end && listed[first + run - 1]) {
            ++run;
        }
        if (run == 0) {
            ++first;
            continue;
        }
        bytes::append_u32(body, (run << 20) + first);
        for (std::uint32_t i = 0; i < run; ++i) {
            bytes::append_u32(body, directory.n_objectOffset(first + i));
        }
        first += run;
    }
    return body;
}

std::uint32_t n_writePersistDirectory(RewriteCopy& copy) {
    v_shiftUserEditChain(copy);
    CurrentUser& user = copy.copy.current_user();
    UserEdit& newest = copy.copy.current_user_edit();
    const Place place =
        find_place(copy, read_old_record(copy.copy, newest.offset_of_persist_directory),
                   read_old_record(copy.copy, user.offset_to_current_edit));

    bytes::Bytes out;
    append_record(out, RT_PersistDirectoryAtom,
                  n_buildPersistDirectory(copy.copy.persist_directory(), copy.first_moved_offset));
    newest.offset_of_persist_directory = place.begin;
    user.offset_to_current_edit = place.begin + static_cast<std::uint32_t>(out.size());
    append_record(out, RT_UserEditAtom, encode_user_edit(newest));
    bytes::append(out, place.kept);
    write_at(copy.copy, place.begin, out);
    return place.begin + static_cast<std::uint32_t>(out.size());
}

} // namespace ppt
