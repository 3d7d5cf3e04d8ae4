// Link ids in the document properties: the user-defined section of the stream U+0005
// "DocumentSummaryInformation" in the root storage. docs/property-sets.md describes the stream.
//
// Each link's id is in the name of a property ("MORVANE-LINK-ID=", the id, a suffix, "%%") whose
// value is the link's path relative to the presentation's folder, in lower case; the property
// "MORVANE-LINK-ID" holds the presentation's own id, and `_PID_HLINKS` the targets of all
// hyperlinks.
#pragma once

#include "platform/platform.h"

#include <cstdint>

namespace ppt {

// Gives the records of the link table their ids and empty hyperlinks their targets (bit 0 of
// `flags`: ids of links; bit 1: the presentation's own id). A missing stream or section is no
// failure; missing memory is 8800 or 9000; any other is 7280, or 8140 where no status code stands
// behind it. Cost: O(n log n) in properties and links.
std::int32_t j_readLinkIdsFromProperties(IStorage* root, std::int32_t flags);

// Stores ids and targets in the copy whose root storage is given, by the same bits; creates the
// stream and the section where they are missing. A failure after the section was opened ends the
// step that it befell and is not undone; the result is then that of the section's commit. Throws,
// as an `int`, when the name of the copy cannot be had or memory runs out.
std::int32_t j_writeLinkIdsToProperties(IStorage* root, std::int32_t flags);

} // namespace ppt
