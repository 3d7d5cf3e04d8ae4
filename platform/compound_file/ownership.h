// Who owns which sector, found out when a file is opened for writing: a sector with two owners must
// never be written through one of them or freed.
#pragma once

#include "platform/compound_file/directory.h"
#include "platform/compound_file/mini_table.h"
#include "platform/compound_file/sector_table.h"

#include <unordered_set>

namespace compound_file {

// Returns the streams that share a sector with another stream or with themselves. Sectors in use
// that are marked free get a proper mark. Throws Errc::corrupt where metadata (FAT, DIFAT,
// directory, mini FAT, mini stream) shares a sector with anything. Cost: O(sectors), whatever the
// chains look like.
std::unordered_set<EntryId> claim_sectors(SectorTable& sectors, MiniTable& minis,
                                          Directory& directory);

} // namespace compound_file
