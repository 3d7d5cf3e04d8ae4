// One link of the loaded presentation, or one external object that it declares.
//
// The link table holds a record for every place that uses a link; the external object list holds a
// record for every hyperlink, linked sound or movie that the document declares, and those are the
// templates from which uses are copied.
#pragma once

#include "hostapi/hostapi.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace ppt {

// Change status: a set of two bits.
inline constexpr std::int32_t kLinkUnchanged = 0;
inline constexpr std::int32_t kLinkIdChanged = 1;
inline constexpr std::int32_t kLinkPathChanged = 2;

// Longest text of a record in bytes, plus its terminator.
inline constexpr std::size_t kLinkTextLimit = 1024;

struct LinkRecord {
    std::string file_name;         // target path in the ANSI code page, as the host sees it
    std::string initial_file_name; // file_name when the record entered the link table
    std::string hyperlink_text;    // text that carries a text hyperlink; empty for other links

    // Type of the record that declares the link (0x0FD7 hyperlink, 0x0FCE OLE link, 0x1005 movie,
    // 0x100D midi, 0x1010 sound); 0 for a picture.
    std::uint32_t record_type = 0;
    // Offset in the "PowerPoint Document" stream by which the rewriting finds the link again.
    std::uint32_t stream_position = 0;
    std::uint32_t external_object_id = 0;
    std::int32_t slide_index = 0;         // running number of the page; -1 for a template
    std::int32_t number_on_slide = 0;     // -1 for a template that no page has numbered
    std::int32_t object_list_ordinal = 0; // child number in the external object list; -1: none
    std::uint32_t holder_persist_id = 0;  // object whose records hold the link
    std::int32_t hyperlink_ordinal = 0;   // number among the hyperlinks of the object list
    std::int32_t text_range_start = 0;    // in characters of the text
    std::int32_t text_range_end = 0;      // the character after the last

    id64 link_id{};
    std::uint32_t property_id = 0; // document property that carried the id; 0: none
    std::int32_t change_status = kLinkUnchanged;

    std::size_t table_index = 0; // position in its list, kept by the list

    bool path_changed() const { return change_status >= kLinkPathChanged; }
};

} // namespace ppt
