// One record of the document stream, and the walk over the children of a container.
//
// A record is read at the current position of its owner's document stream and consumed whole: after
// an atom was read, or after all children of a container were read or skipped, the stream stands at
// the next sibling. The walk only ever moves forward, so a walk costs no more than the stream
// holds, whatever the lengths in it say. Failures are thrown as `int` status codes; a record that
// does not lie inside the stream, or a child that does not end inside its container, is 8140:
// walking such a container child by child and copying it whole would not read the same records.
#pragma once

#include "reader/record_header.h"
#include "reader/record_types.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace ppt {

class PptPresentation;

class PptRecord {
  public:
    explicit PptRecord(PptPresentation* record_owner)
        : owner(record_owner) {}
    PptRecord(const PptRecord&) = delete;
    PptRecord& operator=(const PptRecord&) = delete;
    virtual ~PptRecord() = default;

    // Reads the header and, for an atom, the body at the stream's position. A record without an
    // owner stays as it is. Throws 8140 for a record that runs past the end of the stream, 8800
    // when the body cannot be held.
    void v_readRecord();

    // The same for a record that has to be of the type: throws 8140 for another one, whose body is
    // not read.
    void v_readRecord(RecordType type);

    // Reads only the header, as the first record of a walk is read: a stream that ends before it is
    // 7180 with the counts.
    void v_readHeader();

    // The next child, read; null when this is an atom or all children have been read. The child is
    // owned by this record and is overwritten by the next call. Throws 8140 for a child that runs
    // past the end of this container.
    PptRecord* ps_nextChild();

    // Moves past the children of `child` when it is a container.
    void v_skipChild(const PptRecord& child);

    // Moves past the children that have not been read.
    void v_skipRest();

    // The body as UTF-16 text, in the ANSI code page. Empty when it does not convert or does not
    // fit into `size` bytes (at most 1024) with its terminator; the failure is not passed on.
    std::string n_getAnsiString(std::size_t size) const;

    // The 32-bit value at an offset in the body; throws 8140 when the body is shorter.
    std::uint32_t u32_at(std::size_t offset) const;
    // The byte at an offset in the body; throws 8140 when the body is shorter.
    std::uint8_t u8_at(std::size_t offset) const;

    bool is(RecordType type) const { return header.type == type; }
    // Whether it can be taken apart as one: an atom may have any type.
    bool is_container(RecordType type) const { return is(type) && header.is_container(); }

    RecordHeader header;
    bytes::Bytes body;          // of an atom
    PptPresentation* owner;     // not owned
    std::uint32_t position = 0; // offset of the header in the document stream
    std::uint32_t consumed = 0; // bytes of children read so far, headers included

  private:
    void begin_record();
    void read_body();

    std::unique_ptr<PptRecord> child_;
};

// Reads the record at the current position of `owner`'s document stream and requires its type; a
// null result of ps_nextChild is treated alike. Throws 8140.
PptRecord& required_child(PptRecord& parent);
PptRecord& required_child(PptRecord& parent, RecordType type);

} // namespace ppt
