// The link table and the external object list of the loaded presentation, with the indexes that
// keep every look-up constant or logarithmic.
//
// Records are appended and only removed all together, so indexes and pointers stay valid until
// `clear`; the walk alone takes back links that it has just added. Each index by holder or ordinal
// is built at the first question that needs it after a change: the walk may therefore correct a
// record that it has just added, and nobody may change the holder, type or ordinals of a record
// once such a question was asked.
#pragma once

#include "plugin/link_record.h"

#include <cstdint>
#include <deque>
#include <limits>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

namespace ppt {

// Links beyond this number are damage, however large the file; no real presentation comes near it.
inline constexpr std::size_t kMostLinks = std::size_t{4} << 20;

class LinkTable {
  public:
    // Positions in the table, ascending.
    using Indexes = std::span<const std::uint32_t>;

    const std::deque<LinkRecord>& links() const { return links_; }
    std::deque<LinkRecord>& links() { return links_; }
    const std::deque<LinkRecord>& external_objects() const { return external_objects_; }

    // Links that the document stream has room for: `append_link` throws 8140 for more of them, and
    // for more than kMostLinks.
    void set_stream_size(std::uint64_t bytes);

    // Counts the bytes of a text that links are going to share; throws 8140 for more of them than
    // the document stream has.
    void count_text(std::size_t bytes);

    LinkRecord& append_link(const LinkRecord& record);
    // Not kept when an earlier object has its id and type, since no look-up would find it.
    void append_external_object(const LinkRecord& record);
    // Removes the links that were appended since the table had `count` of them.
    void cut_links(std::size_t count);
    void clear() noexcept;

    // The path as a text that is kept once, however often it is asked for.
    LinkPath shared_path(const std::string& path);

    // The persist id of the document container, which holds all hyperlinks.
    void set_document_persist_id(std::uint32_t id) { document_persist_id_ = id; }
    std::uint32_t document_persist_id() const { return document_persist_id_; }

    // The record at `index`, or null when there is none.
    LinkRecord* at(std::int32_t index);

    LinkRecord* find_external_object(std::uint32_t record_type, std::uint32_t external_object_id);
    // Logarithmic; for the document container, the number of links up to the next of them.
    LinkRecord* next_of_holder(std::uint32_t persist_id, bool only_changed,
                               const LinkRecord* after);
    // All uses of the external object at an ordinal.
    Indexes uses_of_object(std::int32_t object_list_ordinal);
    // All uses of the hyperlink at an ordinal.
    Indexes uses_of_hyperlink(std::int32_t hyperlink_ordinal);

  private:
    static constexpr std::uint64_t kNoTextLimit = std::numeric_limits<std::uint64_t>::max();

    // Positions sorted by a field of their links, those of equal fields ascending.
    struct Index {
        std::vector<std::uint32_t> order;
        bool is_built = false;
    };

    template <class Field>
    Indexes with(Index& index, Field LinkRecord::*field, Field value, bool only_hyperlinks = false);
    bool is_of_document(const LinkRecord& link) const;
    void forget_indexes();

    std::deque<LinkRecord> links_;
    std::size_t most_links_ = kMostLinks;
    std::uint64_t most_text_ = kNoTextLimit; // in bytes
    std::uint64_t text_ = 0;
    std::deque<LinkRecord> external_objects_;
    std::uint32_t document_persist_id_ = 0;
    std::unordered_map<std::string, LinkPath> paths_;

    // The first object with an id; and by type and id, the first of any other type with that id.
    std::unordered_map<std::uint32_t, LinkRecord*> object_by_id_;
    std::unordered_map<std::uint64_t, LinkRecord*> later_object_;

    Index by_holder_;
    Index by_object_ordinal_;
    Index hyperlinks_by_ordinal_;
};

// Appends a copy of `link_template` to the link table and returns the copy. The template is reset
// in place: its initial file name becomes its file name, its id clear, its change status, property
// id and text empty. Writes a log line unless the file name is empty. Throws 8300 for
// null and 7140 for a file name of 1024 bytes or more.
LinkRecord* ps_addLinkRecord(LinkRecord* link_template);

// Appends a copy of `link_template` to the external object list after resetting its change status
// to 0 and its slide index and number on slide to -1. Neither logs nor checks the name.
void v_addExternalObject(LinkRecord* link_template);

// The first external object with the id and, unless `record_type` is 0, the type; null if none.
LinkRecord* ps_findExternalObject(std::uint32_t record_type, std::uint32_t external_object_id);

// The next link after `after` (null: from the first) that belongs to the object with the persist
// id: held by it or, for the document container, any hyperlink. Null when there is none.
LinkRecord* ps_nextLinkOfHolder(std::uint32_t persist_id, bool only_changed,
                                const LinkRecord* after);

// The first link of the external object at the ordinal whose path changed, or null. Uses whose path
// stayed are passed over, so a change made through the second use of an object is not lost.
LinkRecord* ps_findChangedLinkByOrdinal(std::int32_t object_list_ordinal);

} // namespace ppt
