#include "platform/posix/drives.h"

#include "platform/posix/settings.h"
#include "platform/unicode/upcase.h"
#include "platform/unicode/utf8.h"

#include <algorithm>
#include <cstdlib>
#include <vector>

namespace platform {

namespace {

constexpr std::string_view kSeparators = "\\/";

std::u16string key_of(std::string_view head) {
    std::u16string key = unicode::utf8_to_utf16_lossy(head);
    std::transform(key.begin(), key.end(), key.begin(), unicode::upper);
    return key;
}

// A share taken apart: "\\srv\pub" and what follows with its separator, both with '\'.
struct Share {
    std::string head;
    std::string rest;
};

std::optional<Share> parse_share(std::string_view text) {
    if (text.size() < 2 || kSeparators.find(text[0]) == std::string_view::npos ||
        kSeparators.find(text[1]) == std::string_view::npos) {
        return std::nullopt;
    }
    std::vector<std::string> names;
    for (std::size_t at = 2; at < text.size();) {
        const std::size_t end = std::min(text.find_first_of(kSeparators, at), text.size());
        if (end == at) {
            return std::nullopt;
        }
        names.emplace_back(text.substr(at, end - at));
        at = end + 1;
    }
    if (names.size() < 2) {
        return std::nullopt;
    }
    Share share{"\\\\" + names[0] + "\\" + names[1], {}};
    for (std::size_t i = 2; i < names.size(); ++i) {
        share.rest += "\\" + names[i];
    }
    return share;
}

bool is_drive(std::string_view text) {
    return text.size() == 2 && text[1] == ':' &&
           ((text[0] >= 'A' && text[0] <= 'Z') || (text[0] >= 'a' && text[0] <= 'z'));
}

void add_from_environment(DriveTable& table) {
    const char* variable = std::getenv("PPT_DRIVES");
    std::string_view entries = variable == nullptr ? "" : variable;
    while (!entries.empty()) {
        const std::size_t end = std::min(entries.find(';'), entries.size());
        table.add(entries.substr(0, end));
        entries.remove_prefix(std::min(end + 1, entries.size()));
    }
}

} // namespace

DriveTable& DriveTable::instance() {
    static DriveTable table = [] {
        DriveTable filled;
        add_from_environment(filled);
        return filled;
    }();
    return table;
}

bool DriveTable::add(std::string_view entry) {
    const std::size_t sign = entry.find('=');
    if (sign == std::string_view::npos) {
        return false;
    }
    const std::string_view left = entry.substr(0, sign);
    const std::string_view right = entry.substr(sign + 1);
    const std::optional<Share> left_share = parse_share(left);
    if (!is_drive(left) && (!left_share || !left_share->rest.empty())) {
        return false;
    }
    const std::u16string key = key_of(left_share ? left_share->head : left);
    if (!right.empty() && right[0] == '/') {
        targets_[key] = right.substr(0, right.find_last_not_of('/') + 1);
        return true;
    }
    const std::optional<Share> right_share = parse_share(right);
    if (!right_share || left_share) {
        return false;
    }
    targets_[key] = right_share->head + right_share->rest;
    return true;
}

const std::string* DriveTable::find(std::string_view head) const {
    const auto found = targets_.find(key_of(head));
    return found == targets_.end() ? nullptr : &found->second;
}

std::optional<std::string> DriveTable::folder_of(std::string_view head) const {
    const std::string* target = find(head);
    if (target == nullptr) {
        return std::nullopt;
    }
    const std::optional<Share> share = parse_share(*target);
    if (!share || (*target)[0] == '/') {
        return *target;
    }
    const std::string* folder = find(share->head);
    if (folder == nullptr) {
        return std::nullopt;
    }
    std::string rest = share->rest;
    std::replace(rest.begin(), rest.end(), '\\', '/');
    return *folder + rest;
}

std::optional<std::string> DriveTable::share_of(std::string_view drive) const {
    const std::string* target = find(drive);
    if (target == nullptr || target->empty() || (*target)[0] != '\\') {
        return std::nullopt;
    }
    return *target;
}

bool map_drive(const std::string& entry) {
    return DriveTable::instance().add(entry);
}

} // namespace platform
