// The texts of link records. One object may be used a million times, so a record shares its path
// with the object's other records, and what a text link displays is cut out of the shared text of
// its box when somebody asks.
#pragma once

#include "platform/platform.h"
#include "plugin/shared.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace ppt {

// A path. Reads as the text that it is.
class LinkPath {
  public:
    LinkPath() = default;
    LinkPath(std::string text);
    LinkPath(const char* text)
        : LinkPath(std::string(text)) {}

    operator const std::string&() const { return text(); }
    operator std::string_view() const { return text(); }
    const std::string& text() const;
    bool empty() const { return text().empty(); }
    std::size_t size() const { return text().size(); }
    const char* c_str() const { return text().c_str(); }

    friend bool operator==(const LinkPath& path, const std::string& text) {
        return path.text() == text;
    }

  private:
    Shared<std::string> text_; // none for an empty one
};

// The characters of a text box as they are stored: one or two bytes for each.
class StoredText {
  public:
    // `raw`: the single bytes are ANSI text as they are.
    StoredText(bytes::Bytes body, bool one_byte_each, bool raw)
        : body_(std::move(body))
        , one_byte_each_(one_byte_each)
        , raw_(raw) {}

    // In characters.
    std::int32_t length() const;

    // The characters from `start` up to `end`, both inside the text, in the ANSI code page. Throws
    // what the conversion throws.
    std::string ansi(std::int32_t start, std::int32_t end) const;

    // The end of the longest part of [start, end) that fits 1023 bytes in the ANSI code page,
    // without half a character at its end.
    std::int32_t shown_end(std::int32_t start, std::int32_t end) const;

  private:
    WCHAR unit(std::int32_t at) const;
    // Whether a part of the text from `start` up to `end` ends within a character.
    bool halves_a_character(std::int32_t start, std::int32_t end) const;

    bytes::Bytes body_;
    bool one_byte_each_;
    bool raw_;
};

} // namespace ppt
