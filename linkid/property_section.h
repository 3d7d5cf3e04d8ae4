// The user-defined section of a presentation's document properties, opened for reading or writing.
// Owns its COM objects and releases them on every way out. Failures of the system are thrown as
// `int` status codes.
#pragma once

#include "platform/platform.h"

#include <cstdint>
#include <functional>
#include <string>

namespace ppt {

// A property's value; frees what it owns.
class PropertyValue {
  public:
    PropertyValue() = default;
    PropertyValue(const PropertyValue&) = delete;
    PropertyValue& operator=(const PropertyValue&) = delete;
    ~PropertyValue() { PropVariantClear(&value_); }

    PROPVARIANT* put() { return &value_; }
    VARTYPE type() const { return value_.vt; }
    bytes::View blob() const { return {value_.blob.pBlobData, value_.blob.cbSize}; }
    bool is_blob() const { return value_.vt == VT_BLOB && value_.blob.pBlobData != nullptr; }
    bool is_empty_blob() const { return value_.vt == VT_BLOB && value_.blob.cbSize == 0; }

    // Of its characters or bytes; 0 for values of types that take no more than a few.
    std::uint64_t size() const;

    // Whether the value is a text; `text` then gets it in the ANSI code page, at most 1023 bytes of
    // a VT_LPSTR. Throws the status code of a failed conversion.
    bool get_text(std::string& text) const;

  private:
    PROPVARIANT value_{};
};

class PropertySection {
  public:
    // False when the stream or the section does not exist.
    bool open_for_reading(IStorage* root);

    // Opens stream and section, creating what is missing.
    void open_for_writing(IStorage* root);

    // A property's name in UTF-16 and in the ANSI code page, which may not hold all of it.
    struct Name {
        std::basic_string<WCHAR> wide;
        std::string ansi;
    };

    // Calls `visit` with the name and id of each named property in the order of the section, until
    // it returns false. Names that do not fit 259 bytes in the ANSI code page are passed over.
    void for_each(const std::function<bool(const Name&, PROPID)>& visit);

    // Of the whole stream, in bytes.
    std::uint64_t stream_size() const;

    // Whether the stream can be read at its start, but not as far as it claims to go. Also known
    // when the section could not be opened.
    bool stream_is_cut() const;

    // VT_EMPTY when there is no such property.
    void read(const std::basic_string<WCHAR>& name, PropertyValue& value);

    IPropertyStorage* operator->() const { return section_.get(); }
    bool is_open() const { return static_cast<bool>(section_); }

  private:
    ComPtr<IStream> stream_;
    ComPtr<IPropertyStorage> section_;
};

} // namespace ppt
