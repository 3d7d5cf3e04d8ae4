// The text of one text box as far as its hyperlinks need it: the kept text of the last text atom
// and the place where it stands ([MS-PPT] OfficeArtClientTextbox, TextHeaderAtom, TextCharsAtom,
// TextBytesAtom).
//
// Characters are UTF-16 units of the stored text, whatever the ANSI code page makes of them. Texts
// are kept only of the types 4 and 6, and types are only known while the options ask for text.
#pragma once

#include "plugin/link_record.h"
#include "reader/record.h"

#include <cstdint>
#include <string>

namespace ppt {

// The characters of a characters or bytes atom.
std::basic_string<WCHAR> units_of_text_atom(const PptRecord& atom);

// Whether the low bytes of the atom's characters are ANSI text as they are: those of a bytes atom,
// while the code page has one byte for each character.
bool b_holdsAnsiBytes(const PptRecord& atom);

class ClientText {
  public:
    explicit ClientText(std::uint32_t page_persist_id)
        : page_persist_id_(page_persist_id) {}

    void set_type(std::uint32_t type);

    // Takes the text of a characters or bytes atom, whose body it takes over, in place of the text
    // kept so far.
    void keep(PptRecord& atom);

    // Characters of the kept text.
    std::int32_t length() const { return text_.get() == nullptr ? 0 : text_.get()->length(); }

    // Gives a text hyperlink its place, its page and, where the options ask for it, its displayed
    // text: the range cut to the kept text and to 1023 bytes, never inside a character. The range
    // end is stored back as cut. Null is ignored. Throws what the conversion throws.
    void complete(LinkRecord* link) const;

  private:
    bool is_kept_type() const { return type_ == 4 || type_ == 6; }
    void show_text(LinkRecord& link) const;

    std::uint32_t page_persist_id_;
    std::uint32_t type_ = 0;
    std::uint32_t position_ = 0;
    Shared<StoredText> text_;
};

} // namespace ppt
