#include "common_new/common/conversion.h"

#include "plugin/error_params.h"
#include "plugin/failure.h"
#include "plugin/status.h"
#include "plugin/system_error.h"

#include <array>
#include <utility>

namespace ppt {

namespace {

using WideString = std::basic_string<WCHAR>;
using WideView = std::basic_string_view<WCHAR>;

constexpr std::int32_t kThrown = -1;

// The number of units or bytes produced, or kThrown. A stale error of an earlier call must not turn
// a double-byte conversion, which produces fewer units than bytes, into a failure.
std::int32_t convert(const char* source, WCHAR* destination, std::int32_t size) {
    try {
        SetLastError(NO_ERROR);
        return MultiByteToWideChar(CP_ACP, 0, source, -1, destination, size);
    } catch (...) {
        return kThrown;
    }
}

std::int32_t convert(const WCHAR* source, std::int32_t length, char* destination,
                     std::int32_t size) {
    try {
        SetLastError(NO_ERROR);
        return WideCharToMultiByte(CP_ACP, 0, source, length, destination, size, nullptr, nullptr);
    } catch (...) {
        return kThrown;
    }
}

std::int32_t count_of(std::size_t size) {
    return static_cast<std::int32_t>(size);
}

// Throws when a text is too long for the platform's 32-bit counts.
void require_countable(std::size_t room) {
    if (!std::in_range<std::int32_t>(room)) {
        throw static_cast<int>(status::kTextTooLong);
    }
}

void append_converted(WideString& out, std::string_view piece) {
    require_countable(piece.size() + 1);
    const std::string source(piece);
    WideString converted(source.size() + 1, WCHAR{0});
    require_success(j_ansiToWide(source.c_str(), converted.data(), count_of(converted.size())));
    out += converted.c_str();
}

void append_converted(std::string& out, WideView piece) {
    constexpr std::size_t kMostBytesPerUnit = 4;
    require_countable(piece.size() * kMostBytesPerUnit + 1);
    const WideString source(piece);
    std::string converted(source.size() * kMostBytesPerUnit + 1, '\0');
    require_success(j_wideToAnsi(source.c_str(), -1, converted.data(), count_of(converted.size())));
    out += converted.c_str();
}

// The conversions end at a zero: what stands between the zeros of a text is converted by itself.
template <class To, class From>
To convert_pieces(From text) {
    To out;
    for (;;) {
        const auto end = text.find(typename From::value_type{0});
        append_converted(out, text.substr(0, end));
        if (end == From::npos) {
            return out;
        }
        out.push_back(0);
        text.remove_prefix(end + 1);
    }
}

} // namespace

bool b_checkLength(std::string_view text, std::int32_t limit) {
    if (std::cmp_less(text.size(), limit)) {
        return true;
    }
    v_setErrorParamTextAndNumber(text, limit);
    return false;
}

bool b_checkLimit(std::int32_t value, std::int32_t limit) {
    if (value <= limit) {
        return true;
    }
    v_setErrorParamNumbers(value, limit);
    return false;
}

std::int32_t j_ansiToWide(const char* source, WCHAR* destination, std::int32_t size,
                          std::int32_t* written) {
    if (source == nullptr || destination == nullptr) {
        return status::kNullArgument;
    }
    const std::int32_t units = convert(source, destination, size);
    if (units == kThrown) {
        return status::kSystemError;
    }
    const std::string_view text(source);
    if (static_cast<std::size_t>(units) == text.size() + 1) {
        if (written != nullptr) {
            *written = units;
        }
        return status::kSuccess;
    }
    const std::int32_t status = n_translateSystemError();
    if (status == status::kNoUnicodeForm) {
        v_setErrorParamTextAndNumber(text, units);
    } else if (status == status::kTextTooLong) {
        v_setErrorParamTextAndNumber(text, size);
    }
    return status;
}

std::int32_t j_wideToAnsi(const WCHAR* source, std::int32_t length, char* destination,
                          std::int32_t size, std::int32_t* written) {
    if (source == nullptr || destination == nullptr) {
        return status::kNullArgument;
    }
    const std::int32_t bytes = convert(source, length, destination, size);
    if (bytes == kThrown) {
        return status::kSystemError;
    }
    const std::int32_t units = length == -1 ? count_of(WideView(source).size()) : length;
    if (bytes >= units) {
        if (written != nullptr) {
            *written = bytes;
        }
        return status::kSuccess;
    }
    const std::int32_t status = n_translateSystemError();
    if (status == status::kTextTooLong) {
        v_setErrorParamNumbers(length == -1 ? units + 1 : units, size);
    }
    return status;
}

void v_setErrorParamTextAndUser(const char* path) {
    std::array<char, UNLEN + 1> user{};
    DWORD size = static_cast<DWORD>(user.size());
    if (GetUserNameA(user.data(), &size) != FALSE) {
        v_setErrorParamTwoTexts(path, user.data());
    }
}

void v_setErrorParamTextAndUser(const WCHAR* path) {
    constexpr std::int32_t kPathCapacity = 1024;
    std::array<char, kPathCapacity> converted{};
    if (convert(path, -1, converted.data(), kPathCapacity) > 0) {
        v_setErrorParamTextAndUser(converted.data());
    }
}

bool b_codePageIsMultiByte() {
    CPINFO info{};
    return GetCPInfo(CP_ACP, &info) != FALSE && info.MaxCharSize > 1;
}

std::basic_string<WCHAR> wide_from_ansi(std::string_view text) {
    return convert_pieces<std::basic_string<WCHAR>>(text);
}

std::string ansi_from_wide(std::basic_string_view<WCHAR> text) {
    return convert_pieces<std::string>(text);
}

} // namespace ppt
