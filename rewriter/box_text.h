// One text of a text box, and the replacement of hyperlink texts in it ([MS-PPT] TextCharsAtom or
// TextBytesAtom with the atoms behind it that count its characters).
#pragma once

#include "plugin/link_record.h"
#include "reader/record.h"
#include "rewriter/text_replacement.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <unordered_set>
#include <vector>

namespace ppt {

class BoxText {
  public:
    // The records stay their owner's: the atom that holds the characters and, added one by one, the
    // atoms behind it up to the next text. `type` is that of the text header.
    BoxText(PptRecord& atom, std::uint32_t type);
    void add_follower(PptRecord& record);

    std::uint32_t position() const { return atom_.position; }

    // Replaces, in a text of type 4 or 6, the displayed texts of the changed ones among `links`
    // whose text follows the path; `links` are all hyperlinks of this text. A link without a range
    // of its own is only trusted when `is_only_text`, since it may belong to another text of the
    // box. Sets in `written`, by table index, the links that were written. Returns the size change.
    std::int32_t replace(const std::vector<const LinkRecord*>& links, bool is_only_text,
                         std::vector<bool>& written);

  private:
    using Units = std::basic_string<WCHAR>;

    struct Change {
        const LinkRecord* link = nullptr;
        std::uint32_t start = 0;
        std::uint32_t end = 0; // before the paragraph marks that the range ends with
        Units words;
    };

    std::uint32_t length() const { return static_cast<std::uint32_t>(units_.size()); }
    std::vector<Change> changes_of(const std::vector<const LinkRecord*>& links,
                                   bool is_only_text) const;
    bool find_range(const LinkRecord& link, Change& change) const;
    Units words_of(const LinkRecord& link) const;
    bool explains_runs() const;
    Units apply(const std::vector<Change>& changes);
    std::int32_t store(const Units& text);
    void move_ranges(const std::vector<const LinkRecord*>& links);

    PptRecord& atom_;
    std::uint32_t type_;
    Units units_;
    bool holds_ansi_bytes_;
    std::vector<PptRecord*> runs_;
    std::vector<PptRecord*> ranges_;
    std::unordered_set<std::uint32_t> range_starts_;
    TextReplacements replacements_;
};

} // namespace ppt
