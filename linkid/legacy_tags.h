// Link ids as earlier versions of the plug-in kept them: programmable string tags on the pages
// ([MS-PPT] ProgStringTagContainer) whose name contains "OBRIN-LINK-NUM=" and whose value is the
// text form of an id.
//
// The number in a name says nothing: the tags of a page belong to its links by order, first to the
// hyperlinks, what is left to the other links. Pages with more tags than links exist, and the
// surplus goes on to the links of later pages, so nothing is assigned before all links are known.
#pragma once

#include "plugin/link_table.h"
#include "reader/record.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace ppt {

// A container of tags that is shorter holds none.
inline constexpr std::uint32_t kShortestTagContainer = 57;

// The value of a programmable string tag, at most 19 bytes, when its name makes it a link id; null
// for other tags. Reads the name and the value; throws 8140 when one is missing or no string.
std::optional<std::string> legacy_tag_value(PptRecord& string_tag);

// Appends the values of a container's legacy tags to `entries`, which shall not grow beyond
// `capacity`; tags beyond it are passed over. Reads the whole container and returns the number of
// entries. Throws 8140 for a malformed tag.
std::size_t n_readLinkNumberTags(PptRecord& tags, std::uint64_t capacity,
                                 std::vector<std::string>& entries);

// Gives ids from tags to the records of a complete link table, which must outlive the object.
class LegacyTagIds {
  public:
    // Cost: one pass over the table.
    explicit LegacyTagIds(LinkTable& links);

    // Assigns the entries of one page; an empty entry clears an id. Cost: the number of entries.
    void v_assignTagIds(std::int32_t slide_index, const std::vector<std::string>& entries);

  private:
    using Entries = std::vector<std::string>;

    Entries::const_iterator assign(const std::vector<std::uint32_t>& targets, std::uint32_t start,
                                   Entries::const_iterator entry, Entries::const_iterator end);

    std::deque<LinkRecord>& links_;
    std::vector<std::uint32_t> hyperlinks_; // table indexes, ascending
    std::vector<std::uint32_t> others_;
    std::unordered_map<std::int32_t, std::uint32_t> first_of_page_; // by slide index
};

} // namespace ppt
