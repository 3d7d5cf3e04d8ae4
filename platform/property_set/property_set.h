// One section of a property set stream, opened on the bytes of the whole stream. Changes stay in
// memory; `encode` gives the stream to be written.
//
// Owns a copy of the stream. What was not asked to change comes out byte for byte as it went in;
// with no change at all that is the stream itself.
#pragma once

#include "platform/property_set/section.h"
#include "platform/property_set/stream_layout.h"

#include <memory>

namespace property_set {

class PropertySet {
  public:
    // Throws Errc::not_found when the stream is empty or lacks the section, Errc::corrupt when it
    // is no property set stream. `default_code_page` is that of a section which names none.
    static PropertySet open(bytes::Bytes stream, const FormatId& format,
                            std::uint32_t default_code_page);

    // The same, but makes what is missing: the header and the section (with the document section
    // before a user-defined one) in an empty stream, the user-defined section behind a lone
    // document section. Throws Errc::unsupported for any other stream that lacks the section.
    static PropertySet create(bytes::Bytes stream, const FormatId& format,
                              std::uint32_t default_code_page);

    // The same section of other bytes, and of the same bytes without the changes.
    PropertySet reopened(bytes::Bytes stream) const;
    PropertySet reverted() const;

    Section& section() { return section_; }
    const Section& section() const { return section_; }
    const StreamLayout& layout() const { return layout_; }

    // As Section::write. Throws Errc::too_large, and changes nothing, where the stream would become
    // larger than `encode` allows.
    void write(std::span<const Assignment> assignments, PropertyId first_new_id);

    // Whether `encode` gives something else than the stream that this was opened on.
    bool changed() const { return created_ || section_.changed(); }

    // The whole stream, read back once as a check. Throws Errc::too_large above
    // kMaxStreamSize, or kMaxLargeStreamSize when the stream was larger than that before.
    bytes::Bytes encode() const;

  private:
    PropertySet(std::shared_ptr<const bytes::Bytes> stream, StreamLayout layout, std::size_t index,
                std::uint32_t default_code_page, bool created);

    std::shared_ptr<const bytes::Bytes> stream_;
    StreamLayout layout_;
    std::size_t index_;
    std::uint32_t default_code_page_;
    bool created_;
    Section section_;
};

} // namespace property_set
