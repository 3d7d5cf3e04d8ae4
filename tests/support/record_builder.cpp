// See record_builder.h.
#include "tests/support/record_builder.h"

namespace presentation_builder {

namespace {

using namespace record_type;

constexpr std::size_t kHeaderSize = 8;
constexpr std::uint8_t kContainerVersion = 0xF;

Bytes with_header(std::uint8_t version, std::uint16_t instance, std::uint16_t type,
                  std::size_t length) {
    Bytes record;
    record.reserve(kHeaderSize + length);
    bytes::append_u16(record, static_cast<std::uint16_t>((instance << 4) | version));
    bytes::append_u16(record, type);
    bytes::append_u32(record, static_cast<std::uint32_t>(length));
    return record;
}

Bytes words(std::initializer_list<std::uint32_t> values) {
    Bytes body;
    body.reserve(4 * values.size());
    for (const std::uint32_t value : values) {
        bytes::append_u32(body, value);
    }
    return body;
}

void append_properties(Bytes& body, const TextRun& run) {
    bytes::append_u32(body, run.mask);
    bytes::append(body, run.fields);
}

Bytes optional_cstring(std::uint16_t instance, const std::optional<std::u16string>& text) {
    return text ? cstring(instance, *text) : Bytes{};
}

Bytes low_bytes(std::u16string_view text) {
    Bytes body;
    body.reserve(text.size());
    for (const char16_t unit : text) {
        body.push_back(static_cast<std::uint8_t>(unit));
    }
    return body;
}

} // namespace

Bytes atom(std::uint16_t instance, std::uint16_t type, View body, std::uint8_t version) {
    Bytes record = with_header(version, instance, type, body.size());
    bytes::append(record, body);
    return record;
}

Bytes container(std::uint16_t instance, std::uint16_t type, std::initializer_list<View> children) {
    std::size_t length = 0;
    for (const View child : children) {
        length += child.size();
    }
    Bytes record = with_header(kContainerVersion, instance, type, length);
    for (const View child : children) {
        bytes::append(record, child);
    }
    return record;
}

Bytes join(std::initializer_list<View> records) {
    Bytes joined;
    for (const View record : records) {
        bytes::append(joined, record);
    }
    return joined;
}

Bytes utf16(std::u16string_view text) {
    Bytes units;
    units.reserve(2 * text.size());
    for (const char16_t unit : text) {
        bytes::append_u16(units, static_cast<std::uint16_t>(unit));
    }
    return units;
}

Bytes cstring(std::uint16_t instance, std::u16string_view text) {
    return atom(instance, kCString, utf16(text));
}

Bytes external_object_list(std::uint32_t seed, View objects) {
    return container(0, kExternalObjectList,
                     {atom(0, kExternalObjectListAtom, words({seed})), objects});
}

Bytes external_hyperlink(std::uint32_t id, const Hyperlink& link) {
    return container(0, kExternalHyperlink,
                     {atom(0, kExternalHyperlinkAtom, words({id})),
                      optional_cstring(0, link.friendly), optional_cstring(1, link.target),
                      optional_cstring(3, link.location)});
}

Bytes media_atom(std::uint32_t object_id) {
    return atom(0, kExternalMediaAtom, words({object_id, 0}));
}

Bytes media(std::uint16_t type, std::uint32_t object_id, std::u16string_view path,
            std::uint16_t instance) {
    return container(0, type, {media_atom(object_id), cstring(instance, path)});
}

Bytes movie(std::uint16_t type, std::uint32_t object_id, std::u16string_view path) {
    return container(0, type, {media(kExternalVideo, object_id, path)});
}

Bytes video_list(View videos) {
    return container(0, kExternalVideoList, {videos});
}

Bytes ole_object_atom(std::uint32_t type, std::uint32_t object_id, std::uint32_t persist_id) {
    constexpr std::uint32_t kContentAspect = 1;
    return atom(0, kExternalOleObjectAtom,
                words({kContentAspect, type, object_id, 0, persist_id, 0}), 1);
}

Bytes external_ole_link(std::uint32_t object_id, std::uint32_t persist_id) {
    return container(0, kExternalOleLink,
                     {atom(0, kExternalOleLinkAtom, words({0, 1, 1})),
                      ole_object_atom(1, object_id, persist_id), cstring(1, u"Worksheet"),
                      cstring(2, u"Sheet.8"), cstring(3, u"Linked worksheet")});
}

Bytes interactive_info(const Action& action) {
    Bytes body = words({0, action.hyperlink_id});
    for (const std::uint8_t value :
         {action.action, std::uint8_t{0}, action.jump, std::uint8_t{0}, action.hyperlink_type}) {
        bytes::append_u8(body, value);
    }
    body.resize(16); // three unused bytes
    return container(action.mouse_over ? 1 : 0, kInteractiveInfo,
                     {atom(0, kInteractiveInfoAtom, body)});
}

Bytes text_header(std::uint32_t text_type) {
    return atom(0, kTextHeaderAtom, words({text_type}));
}

Bytes text_chars(std::u16string_view text) {
    return atom(0, kTextCharsAtom, utf16(text));
}

Bytes text_bytes(std::u16string_view text) {
    return atom(0, kTextBytesAtom, low_bytes(text));
}

Bytes text_range(std::uint32_t begin, std::uint32_t end, bool mouse_over) {
    return atom(mouse_over ? 1 : 0, kTextInteractiveInfoAtom, words({begin, end}));
}

Bytes text_style(std::span<const TextRun> paragraphs, std::span<const TextRun> characters) {
    Bytes body;
    for (const TextRun& run : paragraphs) {
        bytes::append_u32(body, run.count);
        bytes::append_u16(body, 0);
        append_properties(body, run);
    }
    for (const TextRun& run : characters) {
        bytes::append_u32(body, run.count);
        append_properties(body, run);
    }
    return atom(0, kStyleTextAtom, body);
}

Bytes text_style(std::uint32_t length) {
    // One run of each kind over the text and its final paragraph mark.
    const TextRun plain{length + 1};
    return text_style({&plain, 1}, {&plain, 1});
}

Bytes text_special_info(std::span<const TextRun> runs) {
    Bytes body;
    for (const TextRun& run : runs) {
        bytes::append_u32(body, run.count);
        append_properties(body, run);
    }
    return atom(0, kTextSpecialInfoAtom, body);
}

Bytes master_text(std::initializer_list<std::uint32_t> counts) {
    Bytes body;
    for (const std::uint32_t count : counts) {
        bytes::append_u32(body, count);
        bytes::append_u16(body, 0);
    }
    return atom(0, kMasterTextAtom, body);
}

Bytes text_field(std::uint16_t type, std::uint32_t place, std::size_t more) {
    Bytes body = words({place});
    body.resize(body.size() + more, 0xEE);
    return atom(0, type, body);
}

Bytes text_bookmark(std::uint32_t begin, std::uint32_t end) {
    constexpr std::uint32_t kBookmarkId = 1;
    return atom(0, kTextBookmarkAtom, words({begin, end, kBookmarkId}));
}

Bytes external_object_ref(std::uint32_t object_id) {
    return atom(0, kExternalObjectRefAtom, words({object_id}));
}

Bytes string_tag(std::u16string_view name, std::u16string_view value) {
    return container(0, kProgStringTag, {cstring(0, name), cstring(1, value)});
}

Bytes slide_persist_atom(const SlidePersist& page) {
    return atom(0, kSlidePersistAtom,
                words({page.persist_id, 0, page.text_count, page.slide_id, 0}));
}

Bytes end_document_atom() {
    return atom(0, kEndDocumentAtom, {});
}

Bytes user_edit_atom(const UserEdit& edit) {
    Bytes body = words({edit.last_slide_id});
    bytes::append_u16(body, 0);
    bytes::append_u8(body, 0);
    bytes::append_u8(body, 3); // major version
    bytes::append(body, words({edit.previous_edit, edit.persist_directory, edit.document_id,
                               edit.persist_id_seed}));
    bytes::append_u16(body, 1); // last view: slides
    bytes::append_u16(body, 0);
    return atom(0, kUserEditAtom, body);
}

Bytes persist_directory_atom(std::span<const PersistEntry> entries, std::uint32_t longest_run) {
    Bytes body;
    std::size_t at = 0;
    while (at < entries.size()) {
        std::size_t end = at + 1;
        while (end < entries.size() && end - at < longest_run &&
               entries[end].id == entries[end - 1].id + 1) {
            ++end;
        }
        bytes::append_u32(body, entries[at].id | (static_cast<std::uint32_t>(end - at) << 20));
        for (; at < end; ++at) {
            bytes::append_u32(body, entries[at].offset);
        }
    }
    return atom(0, kPersistDirectoryAtom, body);
}

Bytes current_user_atom(std::uint32_t current_edit, std::string_view user,
                        std::uint32_t header_token) {
    Bytes body = words({20, header_token, current_edit});
    bytes::append_u16(body, static_cast<std::uint16_t>(user.size()));
    bytes::append_u16(body, 0x03F4); // document file version
    bytes::append_u8(body, 3);       // major version
    bytes::append_u8(body, 0);
    bytes::append_u16(body, 0);
    const std::u16string wide(user.begin(), user.end());
    bytes::append(body, low_bytes(wide));
    bytes::append(body, words({8})); // release version: one main master or more
    bytes::append(body, utf16(wide));
    return atom(0, kCurrentUserAtom, body);
}

} // namespace presentation_builder
