// See page_table.h.
#include "platform/code_page/page_table.h"

#include "platform/code_page/code_page.h"
#include "platform/code_page/converter.h"
#include "platform/code_page/page_names.h"

#include <map>
#include <mutex>

namespace code_page {
namespace {

constexpr std::size_t kUnits = 0x10000;
constexpr std::size_t kFirstNonAscii = 0x80;
constexpr std::size_t kFirstTrail = 0x40;

} // namespace

PageTable::PageTable()
    : codes_(kUnits) {}

void PageTable::fill_singles(std::uint32_t page, const Converter& converter) {
    for (std::size_t byte = 0; byte < singles_.size(); ++byte) {
        const auto value = static_cast<std::uint8_t>(byte);
        char16_t unit = static_cast<char16_t>(byte);
        if (byte >= kFirstNonAscii) {
            unit = is_lead_byte(page, value) ? char16_t{0} : converter.unit(value);
            unit = unit == 0 ? unit_for_undefined(page, value) : unit;
        }
        singles_[byte] = unit;
        if (unit != 0) {
            codes_[unit] = value;
        }
    }
}

void PageTable::fill_pairs(std::uint32_t page, const Converter& converter) {
    pairs_.resize(codes_.size());
    for (std::size_t code = kFirstNonAscii << 8; code < pairs_.size(); ++code) {
        const auto lead = static_cast<std::uint8_t>(code >> 8);
        const auto trail = static_cast<std::uint8_t>(code);
        if (!is_lead_byte(page, lead) || trail < kFirstTrail) {
            continue;
        }
        const char16_t unit = converter.unit(lead, trail);
        pairs_[code] = unit;
        if (unit == 0) {
            continue;
        }
        std::uint16_t& known = codes_[unit];
        if (known == 0) {
            known = static_cast<std::uint16_t>(code);
        } else if (const std::uint16_t preferred = converter.pair_for(unit); preferred != 0) {
            known = preferred; // several codes for one unit: the one that the system writes
        }
    }
}

std::unique_ptr<const PageTable> PageTable::build(std::uint32_t page) {
    const Converter converter(page);
    if (!converter.usable()) {
        return nullptr;
    }
    auto table = std::make_unique<PageTable>();
    table->fill_singles(page, converter);
    if (is_double_byte(page)) {
        table->fill_pairs(page, converter);
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
