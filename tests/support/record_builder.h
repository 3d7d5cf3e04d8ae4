// Records of the "PowerPoint Document" and "Current User" streams, composed as byte values. Every
// function returns whole records, header included; records are joined by handing them to a
// container or with `join`. Nothing is checked: tests also compose records that no application
// would write. A container costs one copy of its children.
#pragma once

#include "platform/base/bytes.h"
#include "tests/support/record_types.h"

#include <initializer_list>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace presentation_builder {

using bytes::Bytes;
using bytes::View;

// The general forms. `version` is the low 4 bits of the header; 15 would make a container.
Bytes atom(std::uint16_t instance, std::uint16_t type, View body, std::uint8_t version = 0);
Bytes container(std::uint16_t instance, std::uint16_t type, std::initializer_list<View> children);
Bytes join(std::initializer_list<View> records);

// UTF-16LE bytes without a terminator.
Bytes utf16(std::u16string_view text);

// RT_CString; the instance says what the text is for.
Bytes cstring(std::uint16_t instance, std::u16string_view text);

// --- external objects -------------------------------------------------------------------------

// ExObjListContainer with its ExObjListAtom; `seed` is the highest object id in use.
Bytes external_object_list(std::uint32_t seed, View objects);

struct Hyperlink {
    std::optional<std::u16string> target;
    std::optional<std::u16string> friendly{};
    std::optional<std::u16string> location{};
};

// ExHyperlinkContainer: the atom with the id, then the strings that are there.
Bytes external_hyperlink(std::uint32_t id, const Hyperlink& link);

// ExMediaAtom, the first child of every media container.
Bytes media_atom(std::uint32_t object_id);

// A media container of its own: ExMidiAudioContainer, ExWAVAudioLinkContainer or ExVideoContainer.
// `instance` is that of the path string, 0 where the application wrote it.
Bytes media(std::uint16_t type, std::uint32_t object_id, std::u16string_view path,
            std::uint16_t instance = 0);

// ExAviMovieContainer or ExMCIMovieContainer around one ExVideoContainer.
Bytes movie(std::uint16_t type, std::uint32_t object_id, std::u16string_view path);

// The container 0x0FEA around ready ExVideoContainer records.
Bytes video_list(View videos);

// ExOleObjAtom of type 0 embedded, 1 linked, 2 control.
Bytes ole_object_atom(std::uint32_t type, std::uint32_t object_id, std::uint32_t persist_id);

// ExOleLinkContainer; the persist id is that of the object's storage.
Bytes external_ole_link(std::uint32_t object_id, std::uint32_t persist_id);

// --- what shapes and texts carry --------------------------------------------------------------

struct Action {
    std::uint32_t hyperlink_id = 0;
    std::uint8_t action = 4; // II_HyperlinkAction
    std::uint8_t jump = 0;
    std::uint8_t hyperlink_type = 8; // LT_Url; 7 is a slide of the same presentation
    bool mouse_over = false;
};

// MouseClickInteractiveInfoContainer, or the mouse-over one.
Bytes interactive_info(const Action& action);

Bytes text_header(std::uint32_t text_type);
Bytes text_chars(std::u16string_view text);
// The low bytes of the units.
Bytes text_bytes(std::u16string_view text);
// MouseClickTextInteractiveInfoAtom: the characters from `begin` up to `end`.
Bytes text_range(std::uint32_t begin, std::uint32_t end, bool mouse_over = false);
// A run of characters with the same properties: TextPFRun, TextCFRun or TextSIRun.
struct TextRun {
    std::uint32_t count = 0;
    std::uint32_t mask = 0;
    Bytes fields{}; // what the mask promises
};

// StyleTextPropAtom; the paragraph runs are of level 0.
Bytes text_style(std::span<const TextRun> paragraphs, std::span<const TextRun> characters);
// A plain one for a text of `length` characters.
Bytes text_style(std::uint32_t length);
// TextSpecialInfoAtom.
Bytes text_special_info(std::span<const TextRun> runs);
// MasterTextPropAtom; runs of these lengths, of level 0.
Bytes master_text(std::initializer_list<std::uint32_t> counts);
// The record of a character that is filled in, such as SlideNumberMCAtom: where it stands, and
// `more` bytes that some types have behind it.
Bytes text_field(std::uint16_t type, std::uint32_t place, std::size_t more = 0);
// TextBookmarkAtom: the characters from `begin` up to `end`.
Bytes text_bookmark(std::uint32_t begin, std::uint32_t end);

Bytes external_object_ref(std::uint32_t object_id);

// ProgStringTagContainer; several go into one `container(0, record_type::kProgTags, ...)`.
Bytes string_tag(std::u16string_view name, std::u16string_view value);

// --- file structure ---------------------------------------------------------------------------

struct SlidePersist {
    std::uint32_t persist_id = 0;
    std::uint32_t slide_id = 0;
    std::uint32_t text_count = 0;
};

Bytes slide_persist_atom(const SlidePersist& page);
Bytes end_document_atom();

struct UserEdit {
    std::uint32_t last_slide_id = 256;
    std::uint32_t previous_edit = 0;
    std::uint32_t persist_directory = 0;
    std::uint32_t document_id = 1;
    std::uint32_t persist_id_seed = 1;
};

Bytes user_edit_atom(const UserEdit& edit);

struct PersistEntry {
    std::uint32_t id = 0;
    std::uint32_t offset = 0;
};

// Entries in ascending order of their ids are joined to runs of at most `longest_run` ids.
Bytes persist_directory_atom(std::span<const PersistEntry> entries,
                             std::uint32_t longest_run = 4095);

// The whole "Current User" stream.
Bytes current_user_atom(std::uint32_t current_edit, std::string_view user = "builder",
                        std::uint32_t header_token = 0xE391C05F);

} // namespace presentation_builder
