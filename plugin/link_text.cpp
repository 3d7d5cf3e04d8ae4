#include "plugin/link_text.h"

#include "common_new/common/conversion.h"
#include "plugin/link_record.h"

#include <algorithm>
#include <utility>

namespace ppt {

namespace {

constexpr std::size_t kLongestShown = kLinkTextLimit - 1;

bool is_low_surrogate(WCHAR unit) {
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

} // namespace

LinkPath::LinkPath(std::string text) {
    if (!text.empty()) {
        text_ = Shared<std::string>(std::move(text));
    }
}

const std::string& LinkPath::text() const {
    static const std::string empty;
    return text_.get() == nullptr ? empty : *text_.get();
}

std::int32_t StoredText::length() const {
    return static_cast<std::int32_t>(one_byte_each_ ? body_.size() : body_.size() / 2);
}

WCHAR StoredText::unit(std::int32_t at) const {
    const auto place = static_cast<std::size_t>(at);
    return static_cast<WCHAR>(one_byte_each_ ? body_[place] : bytes::load_u16(body_, 2 * place));
}

std::string StoredText::ansi(std::int32_t start, std::int32_t end) const {
    if (raw_) {
        return {body_.begin() + start, body_.begin() + end};
    }
    std::basic_string<WCHAR> units;
    for (std::int32_t at = start; at < end; ++at) {
        units.push_back(unit(at));
    }
    return ansi_from_wide(units);
}

std::int32_t StoredText::shown_end(std::int32_t start, std::int32_t end) const {
    // A character gives at least one byte, so longer ranges cannot fit.
    end = std::min(end, start + std::min(length() - start, std::int32_t{kLongestShown}));
    for (std::size_t size = ansi(start, end).size(); size > kLongestShown;
         size = ansi(start, end).size()) {
        end -= static_cast<std::int32_t>(std::max<std::size_t>(1, (size - kLongestShown) / 3));
    }
    const bool halves_a_character = end > start && end < length() && is_low_surrogate(unit(end));
    return halves_a_character ? end - 1 : end;
}

std::string LinkRecord::hyperlink_text() const {
    const StoredText* text = box_text.get();
    if (text == nullptr) {
        return {};
    }
    const std::int32_t start = std::clamp(text_range_start, 0, text->length());
    return text->ansi(start, std::max(start, text_range_end));
}

} // namespace ppt
