#include "plugin/error_params.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <initializer_list>
#include <limits>
#include <memory>

namespace ppt {

namespace {

using WideView = std::basic_string_view<WCHAR>;

// Plain memory of the C library: no new-handler runs while an allocation failure is being reported.
struct FreeUnits {
    void operator()(WCHAR* units) const { std::free(units); }
};
using Units = std::unique_ptr<WCHAR, FreeUnits>;

class OwnedArray {
  public:
    ~OwnedArray() { replace(nullptr, 0); }

    ErrorParamArray* get() { return &array_; }

    std::size_t length() const { return array_.text == nullptr ? 0 : WideView(array_.text).size(); }

    void replace(Units text, std::size_t capacity) {
        std::free(array_.text);
        array_.text = text.release();
        array_.capacity = static_cast<std::int32_t>(capacity);
    }

  private:
    ErrorParamArray array_{0, nullptr};
};

OwnedArray& owned_array() {
    static OwnedArray array;
    return array;
}

// A number as text, without memory of its own making.
class Decimal {
  public:
    explicit Decimal(std::int32_t number) {
        std::snprintf(text_.data(), text_.size(), "%d", number);
    }
    operator std::string_view() const { return text_.data(); }

  private:
    std::array<char, 12> text_{};
};

// One parameter: text in the ANSI code page or in UTF-16.
class Item {
  public:
    Item(std::string_view ansi)
        : ansi_(ansi) {}
    Item(WideView wide)
        : wide_(wide) {}

    // Enough for the converted text: no character has more units than bytes.
    std::size_t room() const { return ansi_.size() + wide_.size(); }

    // Writes at most `room()` units and returns how many.
    std::size_t write(WCHAR* to) const {
        if (!wide_.empty()) {
            std::copy(wide_.begin(), wide_.end(), to);
            return wide_.size();
        }
        if (ansi_.empty()) {
            return 0;
        }
        const int size = static_cast<int>(ansi_.size());
        return static_cast<std::size_t>(
            std::max(0, MultiByteToWideChar(CP_ACP, 0, ansi_.data(), size, to, size)));
    }

  private:
    std::string_view ansi_;
    WideView wide_;
};

// Zero-filled; null when the units cannot be had or counted in 32 bits.
Units allocate(std::size_t capacity) {
    if (capacity > static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max())) {
        return nullptr;
    }
    return Units(static_cast<WCHAR*>(std::calloc(capacity, sizeof(WCHAR))));
}

void set(std::initializer_list<Item> items) {
    std::size_t capacity = std::max<std::size_t>(items.size(), 1); // separators and terminator
    for (const Item& item : items) {
        capacity += item.room();
    }
    Units text = allocate(capacity);
    if (text == nullptr) {
        owned_array().replace(nullptr, 0);
        return;
    }
    WCHAR* end = text.get();
    for (const Item& item : items) {
        if (&item != items.begin()) {
            *end++ = kErrorParamSeparator;
        }
        end += item.write(end);
    }
    owned_array().replace(std::move(text), capacity);
}

bool append(const Item& item) {
    OwnedArray& array = owned_array();
    const std::size_t length = array.length();
    const std::size_t needed = length + 1 + item.room() + 1;
    if (needed > static_cast<std::size_t>(array.get()->capacity)) {
        Units grown = allocate(needed);
        if (grown == nullptr) {
            return false;
        }
        std::copy_n(array.get()->text, length, grown.get());
        array.replace(std::move(grown), needed);
    }
    WCHAR* const end = array.get()->text + length;
    *end = kErrorParamSeparator;
    end[1 + item.write(end + 1)] = 0;
    return true;
}

} // namespace

ErrorParamArray* error_param_array() {
    return owned_array().get();
}

void v_setErrorParamText(std::string_view text) {
    set({text});
}

void v_setErrorParamWideText(std::basic_string_view<WCHAR> text) {
    set({text});
}

void v_setErrorParamTwoTexts(std::string_view first, const char* second) {
    if (second == nullptr) {
        set({first});
    } else {
        set({first, std::string_view(second)});
    }
}

void v_setErrorParamTextAndWide(std::string_view first, std::basic_string_view<WCHAR> second) {
    set({first, second});
}

void v_setErrorParamTextAndNumber(std::string_view text, std::int32_t number) {
    set({text, std::string_view(Decimal(number))});
}

void v_setErrorParamNumbers(std::int32_t first, std::int32_t second) {
    set({std::string_view(Decimal(first)), std::string_view(Decimal(second))});
}

// Written where it stays: the text may be as long as the presentation.
void v_setErrorParamCountAndIndexes(std::span<const std::uint32_t> indexes) {
    const auto digits = [](std::size_t number) {
        return Decimal(static_cast<std::int32_t>(number));
    };
    std::size_t capacity = std::string_view(digits(indexes.size())).size() + 1; // terminator
    for (const std::uint32_t index : indexes) {
        capacity += 1 + std::string_view(digits(index)).size();
    }
    Units text = allocate(capacity);
    if (text == nullptr) {
        owned_array().replace(nullptr, 0);
        return;
    }
    WCHAR* end = text.get();
    const auto write = [&](std::string_view ascii) {
        end = std::copy(ascii.begin(), ascii.end(), end);
    };
    write(digits(indexes.size()));
    for (const std::uint32_t index : indexes) {
        *end++ = kErrorParamSeparator;
        write(digits(index));
    }
    owned_array().replace(std::move(text), capacity);
}

bool b_appendErrorParamText(std::string_view text) {
    return append(text);
}

bool b_appendErrorParamWideText(std::basic_string_view<WCHAR> text) {
    return append(text);
}

bool b_appendErrorParamNumber(std::int32_t number) {
    return append(std::string_view(Decimal(number)));
}

} // namespace ppt
