// See property_set.h.
#include "platform/property_set/property_set.h"

#include "platform/base/error.h"

#include <algorithm>

namespace property_set {
namespace {

using platform::Errc;
using platform::Error;

NewSection new_section(const FormatId& format) {
    return {format, Section::fresh(format)};
}

std::size_t allowed_size(std::size_t size_before) {
    return size_before > kMaxStreamSize ? kMaxLargeStreamSize : kMaxStreamSize;
}

void require_allowed_size(const bytes::Bytes& stream, std::size_t size_before) {
    const std::size_t allowed = allowed_size(size_before);
    if (stream.size() > allowed) {
        throw Error(Errc::too_large, "property set stream of " + std::to_string(stream.size()) +
                                         " bytes, " + std::to_string(allowed) + " allowed");
    }
}

// The stream with the missing section in it.
bytes::Bytes completed(const bytes::Bytes& stream, const FormatId& format) {
    if (stream.empty()) {
        std::vector<NewSection> sections;
        if (format == kUserDefinedFormat) {
            sections.push_back(new_section(kDocumentFormat));
        }
        sections.push_back(new_section(format));
        return fresh_stream(sections);
    }
    const StreamLayout layout = read_layout(stream);
    if (format != kUserDefinedFormat || layout.places.size() != 1 ||
        layout.places.front().format != kDocumentFormat) {
        throw Error(Errc::unsupported, "no place for a section in a stream that has " +
                                           std::to_string(layout.places.size()));
    }
    if (!layout.damage.empty()) {
        throw Error(Errc::corrupt, "property set stream is not written: " + layout.damage);
    }
    return with_added_section(stream, layout, new_section(format));
}

} // namespace

PropertySet::PropertySet(std::shared_ptr<const bytes::Bytes> stream, StreamLayout layout,
                         std::size_t index, std::uint32_t default_code_page, bool created)
    : stream_(std::move(stream))
    , layout_(std::move(layout))
    , index_(index)
    , default_code_page_(default_code_page)
    , created_(created)
    , section_(Section::parse(RawBytes(stream_, *stream_)
                                  .part(layout_.places[index].offset, layout_.places[index].extent),
                              layout_.version, default_code_page)) {}

PropertySet PropertySet::open(bytes::Bytes stream, const FormatId& format,
                              std::uint32_t default_code_page) {
    if (stream.empty()) {
        throw Error(Errc::not_found, "empty property set stream");
    }
    StreamLayout layout = read_layout(stream);
    const std::optional<std::size_t> index = layout.find(format);
    if (!index) {
        throw Error(Errc::not_found, "property set stream without the section");
    }
    return {std::make_shared<const bytes::Bytes>(std::move(stream)), std::move(layout), *index,
            default_code_page, false};
}

PropertySet PropertySet::create(bytes::Bytes stream, const FormatId& format,
                                std::uint32_t default_code_page) {
    if (!stream.empty() && read_layout(stream).find(format)) {
        return open(std::move(stream), format, default_code_page);
    }
    PropertySet made = open(completed(stream, format), format, default_code_page);
    require_allowed_size(*made.stream_, 0);
    made.created_ = true;
    return made;
}

PropertySet PropertySet::reopened(bytes::Bytes stream) const {
    return open(std::move(stream), layout_.places[index_].format, default_code_page_);
}

PropertySet PropertySet::reverted() const {
    return {stream_, layout_, index_, default_code_page_, created_};
}

void PropertySet::write(std::span<const Assignment> assignments, PropertyId first_new_id) {
    const std::size_t others = stream_->size() - layout_.places[index_].extent;
    const std::size_t allowed = allowed_size(stream_->size());
    section_.write(assignments, first_new_id, allowed - std::min(others, allowed));
}

bytes::Bytes PropertySet::encode() const {
    if (!section_.changed()) {
        return *stream_;
    }
    if (!layout_.damage.empty()) {
        throw Error(Errc::corrupt, "property set stream is not written: " + layout_.damage);
    }
    bytes::Bytes result = with_section(*stream_, layout_, index_, section_.encode());
    require_allowed_size(result, stream_->size());
    const PropertySet read_back = reopened(result);
    if (!read_back.section().damage().empty() || !read_back.section().same_content(section_)) {
        throw Error(Errc::corrupt, "property section does not read back as written: " +
                                       read_back.section().damage());
    }
    return result;
}

} // namespace property_set
