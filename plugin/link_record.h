// One link of the loaded presentation, or one external object that it declares.
//
// The link table holds a record for every place that uses a link; the external object list holds a
// record for every hyperlink, linked sound, movie or OLE object that the document declares, and
// those are the templates from which uses are copied.
#pragma once

#include "hostapi/hostapi.h"
#include "plugin/link_text.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace ppt {

// Change status: a set of two bits.
inline constexpr std::int16_t kLinkUnchanged = 0;
inline constexpr std::int16_t kLinkIdChanged = 1;
inline constexpr std::int16_t kLinkPathChanged = 2;

// Longest text of a record in bytes, plus its terminator.
inline constexpr std::size_t kLinkTextLimit = 1024;

// A use of an object takes 12 bytes of a file; a record is kept small for that.
struct LinkRecord {
    LinkPath file_name;          // target path in the ANSI code page, as the host sees it
    LinkPath initial_file_name;  // file_name when the record entered the link table
    Shared<StoredText> box_text; // that a text hyperlink's range lies in, when texts are wanted

    // Offset in the "PowerPoint Document" stream by which the rewriting finds the link again.
    std::uint32_t stream_position = 0;
    std::uint32_t external_object_id = 0;
    std::int32_t slide_index = 0;         // running number of the page; -1 for a template
    std::int32_t number_on_slide = 0;     // -1 for a template that no page has numbered
    std::int32_t object_list_ordinal = 0; // child number in the external object list; -1: none
    std::uint32_t holder_persist_id = 0;  // object whose records hold the link
    std::int32_t hyperlink_ordinal = 0;   // number among the hyperlinks of the object list
    std::int32_t text_range_start = 0;    // in characters of the text
    std::int32_t text_range_end = 0;      // the character after the last; inside the box's text

    id64 link_id{};
    std::uint32_t property_id = 0; // document property that carried the id; 0: none
    std::uint32_t table_index = 0; // position in its list, kept by the list
    // Type of the record that declares the link (0x0FD7 hyperlink, 0x0FCE OLE link, 0x1005 movie,
    // 0x100D midi, 0x1010 sound); 0 for a picture.
    std::uint16_t record_type = 0;
    std::int16_t change_status = kLinkUnchanged;

    bool path_changed() const { return change_status >= kLinkPathChanged; }
    void add_change(std::int16_t bits) {
        change_status = static_cast<std::int16_t>(change_status | bits);
    }

    // The text that carries a text hyperlink, in the ANSI code page and at most 1023 bytes; empty
    // for other links. Throws what the conversion throws.
    std::string hyperlink_text() const;
};

} // namespace ppt
