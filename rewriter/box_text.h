// One text of a text box, and the replacement of hyperlink texts in it ([MS-PPT] TextCharsAtom or
// TextBytesAtom with the atoms behind it that count its characters).
//
// Keeps its characters and the places of the records behind them, which are read again when they
// are written: a text may have millions of them.
#pragma once

#include "plugin/link_record.h"
#include "reader/record.h"
#include "rewriter/rewrite_copy.h"
#include "rewriter/text_replacement.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace ppt {

class BoxText {
  public:
    // Takes over the body of the atom that holds the characters. `type` is that of the text header.
    BoxText(PptRecord& atom, std::uint32_t type);

    // A record behind the characters, in front of the next text.
    void add_follower(const PptRecord& record);

    std::uint32_t position() const { return atom_.position; }

    // Writes the characters and the records behind them. In a text of type 4 or 6 the displayed
    // texts of the changed ones among `links` whose text follows the path are replaced; `links` are
    // all hyperlinks of this text. A link without a range of its own is only trusted when
    // `is_only_text`, since it may belong to another text of the box. The links that were written
    // are noted in the copy. Returns the size change.
    std::int32_t write(const std::vector<const LinkRecord*>& links, bool is_only_text,
                       RewriteCopy& copy);

  private:
    using Units = std::basic_string<WCHAR>;

    struct Range {
        std::uint32_t start = 0;
        std::uint32_t end = 0;
    };

    struct Change {
        const LinkRecord* link = nullptr;
        std::uint32_t start = 0;
        std::uint32_t end = 0; // before the paragraph marks that the range ends with
        Units words;
    };

    WCHAR unit(std::uint32_t at) const;
    bool starts_a_range(std::uint32_t start) const;
    std::uint32_t end_of_words(std::uint32_t end);
    std::vector<Change> changes_of(const std::vector<const LinkRecord*>& links, bool is_only_text);
    bool find_range(const LinkRecord& link, Change& change);
    bool holds_a_field(const Change& change) const;
    Units words_of(const LinkRecord& link) const;
    bool explains_runs(PptPresentation& loaded) const;
    std::int32_t replace(std::vector<Change> changes, const std::vector<const LinkRecord*>& links,
                         RewriteCopy& copy);
    Units apply(const std::vector<Change>& changes);
    std::int32_t store(const Units& text);
    void move_ranges(const std::vector<const LinkRecord*>& links);
    void write_followers(RewriteCopy& copy) const;

    PptRecord atom_;
    std::uint32_t type_;
    bool holds_ansi_bytes_;
    std::uint32_t length_;                    // of the stored text, in characters
    std::vector<std::uint32_t> followers_;    // places in the loaded document stream
    std::vector<Range> ranges_;               // of those followers that are ranges, in their order
    std::vector<std::uint32_t> range_starts_; // ascending once the text is written
    std::vector<std::uint32_t> fields_;       // the same; characters that the program fills in
    std::map<std::uint32_t, std::uint32_t> mark_stretches_; // start and end, as far as looked at
    TextReplacements replacements_;                         // none: the text stays as it is
};

} // namespace ppt
