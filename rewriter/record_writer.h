// The primitives of all rewriting: a record unchanged, a string atom with another text, and the
// header of a container whose children changed their sizes.
//
// Records are read from the loaded presentation and written at the copy's position. Every operation
// that rewrites returns its size change: new size minus old size in bytes. Failures are thrown as
// `int` status codes.
#pragma once

#include "reader/record.h"
#include "rewriter/rewrite_copy.h"

#include <cstdint>
#include <string>

namespace ppt {

// Writes the record unchanged; a container is copied whole, header included, and the loaded stream
// then stands behind it. Containers must not have been walked, atoms are written as read.
void v_writeRecord(RewriteCopy& copy, const PptRecord& record);

// Makes room for the header of a container that has just been read and returns the position of the
// room in the copy. The header is written last, by v_fixRecordLength. 8140 for an atom, whatever
// its type: its body would be lost.
std::uint32_t n_openContainer(RewriteCopy& copy, const PptRecord& container);

// Writes the record's header, its length grown by the size change, at its position in the copy. The
// copy's position stays. 8140 when the length would leave its range.
void v_fixRecordLength(RewriteCopy& copy, const PptRecord& record, std::uint32_t header_position,
                       std::int32_t size_change);

// Moves the loaded stream behind a record that is left out of the copy, so that nothing brings it
// back; the copy is written on from its present position. Returns the size change.
std::int32_t n_dropRecord(RewriteCopy& copy, const PptRecord& record);

// Gives an atom another body and returns the size change. 8140 when the length would leave its
// range.
std::int32_t n_setBody(PptRecord& atom, bytes::Bytes body);

// Writes a string atom with `text` (in the ANSI code page) as its new body, without a terminator.
// 8140 for a container.
std::int32_t n_replaceString(PptRecord& record, const std::string& text, RewriteCopy& copy);

} // namespace ppt
