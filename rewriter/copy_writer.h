// Writes the rewritten records into the copy's document stream.
//
// Small writes are collected and go to the stream in pieces of 64 KiB; headers that are still among
// them are corrected in memory. Nothing else may move or write the stream while bytes are pending:
// `flush` first. Failures are thrown as `int` status codes; what was pending is then lost, which is
// no loss, since the copy is given up.
#pragma once

#include "platform/platform.h"

#include <cstdint>

namespace ppt {

class PptPresentation;

class CopyWriter {
  public:
    // `stream` stays its owner's and must outlive the writer.
    explicit CopyWriter(IStream* stream)
        : stream_(stream) {}

    // The position at which the next byte is written.
    std::uint32_t tell() const { return start_ + static_cast<std::uint32_t>(pending_.size()); }
    void seek(std::uint32_t position);

    void write(bytes::View data);

    // Overwrites bytes that were written before, at most up to `tell`.
    void overwrite(std::uint32_t position, bytes::View data);

    // Copies `count` bytes from the current position of the presentation's document stream and
    // returns a status code: 7180 with path, bytes read and bytes asked for where that stream ends
    // before. Large stretches go from stream to stream without passing through memory.
    std::int32_t copy(PptPresentation& source, std::uint32_t count);

    void flush();

  private:
    void write_at(std::uint32_t position, bytes::View data);

    IStream* stream_;
    std::uint32_t start_ = 0; // position of the first pending byte
    bytes::Bytes pending_;
};

} // namespace ppt
