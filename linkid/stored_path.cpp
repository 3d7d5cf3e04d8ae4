#include "linkid/stored_path.h"

#include "common_new/SafeFunc/paths.h"
#include "common_new/SafeFunc/split_path.h"
#include "linkid/link_id_tag.h"
#include "plugin/status.h"

#include <array>

namespace ppt {

namespace {

constexpr std::size_t kLongestName = 259;
constexpr std::string_view kNameEnd = "%%";

std::string_view name_suffix(std::string_view file_name) {
    const std::size_t item = file_name.find('!');
    if (item != std::string_view::npos) {
        return file_name.substr(item);
    }
    for (std::size_t at = 0; at < file_name.size(); at += character_size(file_name, at)) {
        if (file_name[at] == ']') {
            // Directly behind the id a digit would be read as part of it.
            const std::size_t next = at + 1;
            const bool is_digit =
                next < file_name.size() && file_name[next] >= '0' && file_name[next] <= '9';
            return file_name.substr(is_digit ? at : next);
        }
    }
    return {};
}

} // namespace

std::string stored_path(const std::string& file_name, const std::string& presentation_path) {
    std::string path;
    try {
        v_makeRelativePath(file_name.c_str(), presentation_path.c_str(), &path);
    } catch (int failure) {
        if (failure != status::kSystemError) {
            throw;
        }
        path = file_name;
    }
    return ascii_lower(path);
}

std::string link_property_name(const LinkRecord& link) {
    std::string name = std::string(kLinkIdTag) + id_text(link.link_id);
    const std::string_view suffix = name_suffix(link.file_name);
    if (name.size() + suffix.size() <= kLongestName) {
        name += suffix;
    }
    if (name.size() + kNameEnd.size() <= kLongestName) {
        name += kNameEnd;
    }
    return name;
}

std::string plain_property_name(const LinkRecord& link) {
    return std::string(kLinkIdTag) + id_text(link.link_id) + std::string(kNameEnd);
}

std::string id_text(const id64& id) {
    std::array<char, 32> text{};
    v_id64ToStr(&id, text.data());
    return text.data();
}

} // namespace ppt
