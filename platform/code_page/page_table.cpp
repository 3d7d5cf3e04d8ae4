// See page_table.h.
#include "platform/code_page/page_table.h"

#include "platform/code_page/code_page.h"
#include "platform/code_page/page_names.h"

#include <iconv.h>

#include <map>
#include <mutex>
#include <optional>

namespace code_page {
namespace {

constexpr std::size_t kUnits = 0x10000;
constexpr std::size_t kFirstNonAscii = 0x80;
constexpr std::size_t kFirstTrail = 0x40;

} // namespace

// An iconv descriptor that converts one character at a time.
class Converter {
  public:
    Converter(const char* to, const char* from)
        : descriptor_(iconv_open(to, from)) {}
    ~Converter() {
        if (usable()) {
            iconv_close(descriptor_);
        }
    }
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;

    bool usable() const { return descriptor_ != reinterpret_cast<iconv_t>(-1); }

    // The two bytes that `input` converts to, or nothing when it converts to more, to fewer, or not
    // at all. Converters that hold a character back to join it with the next are flushed.
    template <std::size_t Size>
    std::optional<std::array<std::uint8_t, 2>> two_bytes(std::array<char, Size> input) const {
        std::array<char, 8> output{};
        char* in = input.data();
        char* out = output.data();
        std::size_t in_left = input.size();
        std::size_t out_left = output.size();
        iconv(descriptor_, nullptr, nullptr, nullptr, nullptr);
        if (iconv(descriptor_, &in, &in_left, &out, &out_left) != 0 || in_left != 0 ||
            iconv(descriptor_, nullptr, nullptr, &out, &out_left) != 0 ||
            output.size() - out_left != 2) {
            return std::nullopt;
        }
        return std::array<std::uint8_t, 2>{static_cast<std::uint8_t>(output[0]),
                                           static_cast<std::uint8_t>(output[1])};
    }

    template <class... Byte>
    char16_t unit(Byte... bytes) const {
        const auto converted = two_bytes(std::array<char, sizeof...(bytes)>{
            static_cast<char>(static_cast<std::uint8_t>(bytes))...});
        return converted ? static_cast<char16_t>((*converted)[0] | ((*converted)[1] << 8))
                         : char16_t{0};
    }

  private:
    iconv_t descriptor_;
};

PageTable::PageTable()
    : codes_(kUnits) {}

void PageTable::fill_singles(std::uint32_t page, const Converter& to_utf16) {
    for (std::size_t byte = 0; byte < singles_.size(); ++byte) {
        const auto value = static_cast<std::uint8_t>(byte);
        char16_t unit = static_cast<char16_t>(byte);
        if (byte >= kFirstNonAscii) {
            unit = is_lead_byte(page, value) ? char16_t{0} : to_utf16.unit(value);
            unit = unit == 0 ? unit_for_undefined(page, value) : unit;
        }
        singles_[byte] = unit;
        if (unit != 0) {
            codes_[unit] = value;
        }
    }
}

void PageTable::fill_pairs(std::uint32_t page, const Converter& to_utf16,
                           const Converter& from_utf16) {
    pairs_.resize(codes_.size());
    for (std::size_t code = kFirstNonAscii << 8; code < pairs_.size(); ++code) {
        const auto lead = static_cast<std::uint8_t>(code >> 8);
        if (!is_lead_byte(page, lead) || (code & 0xFF) < kFirstTrail) {
            continue;
        }
        const char16_t unit = to_utf16.unit(lead, code & 0xFF);
        pairs_[code] = unit;
        if (unit == 0) {
            continue;
        }
        std::uint16_t& known = codes_[unit];
        if (known == 0) {
            known = static_cast<std::uint16_t>(code);
        } else if (const auto preferred = from_utf16.two_bytes(std::array<char, 2>{
                       static_cast<char>(unit & 0xFF), static_cast<char>(unit >> 8)})) {
            // Several codes for one unit: the one that the C library writes.
            known = static_cast<std::uint16_t>((*preferred)[0] << 8 | (*preferred)[1]);
        }
    }
}

std::unique_ptr<const PageTable> PageTable::build(std::uint32_t page) {
    const char* name = iconv_name(page);
    if (name == nullptr) {
        return nullptr;
    }
    const Converter to_utf16("UTF-16LE", name);
    const Converter from_utf16(name, "UTF-16LE");
    if (!to_utf16.usable() || !from_utf16.usable()) {
        return nullptr;
    }
    auto table = std::make_unique<PageTable>();
    table->fill_singles(page, to_utf16);
    if (is_double_byte(page)) {
        table->fill_pairs(page, to_utf16, from_utf16);
    }
    return table;
}

const PageTable* PageTable::find(std::uint32_t page) {
    static std::mutex mutex;
    static std::map<std::uint32_t, std::unique_ptr<const PageTable>> tables;
    if (iconv_name(page) == nullptr) {
        return nullptr;
    }
    const std::lock_guard lock(mutex);
    std::unique_ptr<const PageTable>& table = tables[page];
    if (!table) {
        table = build(page);
    }
    return table.get();
}

} // namespace code_page
