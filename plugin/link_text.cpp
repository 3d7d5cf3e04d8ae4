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

bool StoredText::halves_a_character(std::int32_t start, std::int32_t end) const {
    return end > start && end < length() && is_low_surrogate(unit(end));
}

std::int32_t StoredText::shown_end(std::int32_t start, std::int32_t end) const {
    // A character gives at least one byte. Where a piece does not fit half of it is tried: together
    // no more is converted than twice what is shown.
    std::int32_t room = kLongestShown;
    std::int32_t shown = start;
    for (std::int32_t piece = room; piece > 0 && shown < end; piece = std::min(piece, room)) {
        std::int32_t next = shown + std::min(end - shown, piece);
        next += next < end && halves_a_character(shown, next) ? 1 : 0;
        const std::size_t size = ansi(shown, next).size();
        if (std::cmp_less_equal(size, room)) {
            room -= static_cast<std::int32_t>(size);
            shown = next;
        } else {
            piece /= 2;
        }
    }
    return halves_a_character(start, shown) ? shown - 1 : shown;
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
