#include "common_new/common/conversion.h"

#include "plugin/error_params.h"
#include "plugin/failure.h"
#include "plugin/status.h"
#include "plugin/system_error.h"

#include <algorithm>
#include <array>
#include <utility>

namespace ppt {

namespace {

using WideString = std::basic_string<WCHAR>;
using WideView = std::basic_string_view<WCHAR>;

constexpr std::int32_t kThrown = -1;

// The number of units or bytes produced, or kThrown. A stale error of an earlier call must not turn
// a double-byte conversion, which produces fewer units than bytes, into a failure.
std::int32_t convert(const char* source, std::int32_t length, WCHAR* destination,
                     std::int32_t size) {
    try {
        SetLastError(NO_ERROR);
        return MultiByteToWideChar(CP_ACP, 0, source, length, destination, size);
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

// The whole text at once, zeros and all: a text may have thousands of them.
template <class To, class From>
To convert_whole(From text, std::size_t most_per_item) {
    if (text.empty()) {
        return {};
    }
    require_countable(text.size() * most_per_item);
    To converted(text.size() * most_per_item, typename To::value_type{});
    const std::int32_t count =
        convert(text.data(), count_of(text.size()), converted.data(), count_of(converted.size()));
    if (count <= 0) {
        require_success(count == kThrown ? status::kSystemError : n_translateSystemError());
    }
    converted.resize(static_cast<std::size_t>(std::max(count, 0)));
    return converted;
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
    const std::int32_t units = convert(source, -1, destination, size);
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
    constexpr std::size_t kMostUnitsPerByte = 1;
    return convert_whole<WideString>(text, kMostUnitsPerByte);
}

std::string ansi_from_wide(std::basic_string_view<WCHAR> text) {
    constexpr std::size_t kMostBytesPerUnit = 4;
    return convert_whole<std::string>(text, kMostBytesPerUnit);
}

} // namespace ppt
