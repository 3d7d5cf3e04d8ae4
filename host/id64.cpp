// Link ids of the stand-in host: unsigned 64-bit numbers, word[0] the low half, written in decimal.
// 0 is the clear id, which is also what a text without a usable number gives.
#include "hostapi/hostapi.h"

#include <charconv>
#include <limits>
#include <string_view>
#include <system_error>

namespace {

std::uint64_t value_of(const id64& id) {
    return static_cast<std::uint64_t>(id.word[1]) << 32 | id.word[0];
}

void set_value(id64& id, std::uint64_t value) {
    id.word[0] = static_cast<std::uint32_t>(value);
    id.word[1] = static_cast<std::uint32_t>(value >> 32);
}

} // namespace

// Clear is the only kind that this host keeps.
void HOSTAPI_CALL v_id64Set(id64* id, std::int32_t /*kind*/) {
    set_value(*id, 0);
}

void HOSTAPI_CALL v_id64FromStr(id64* id, const char* text) {
    const std::string_view digits(text);
    std::uint64_t value = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    set_value(*id, error == std::errc() ? value : 0);
}

void HOSTAPI_CALL v_id64ToStr(const id64* id, char* text) {
    constexpr int kLongest = std::numeric_limits<std::uint64_t>::digits10 + 1;
    *std::to_chars(text, text + kLongest, value_of(*id)).ptr = '\0';
}

std::int32_t HOSTAPI_CALL b_id64IsClear(const id64* id) {
    return value_of(*id) == 0 ? 1 : 0;
}

void HOSTAPI_CALL v_id64Move(id64* destination, const id64* source) {
    *destination = *source;
}
