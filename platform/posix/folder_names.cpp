#include "platform/posix/folder_names.h"

#include "platform/unicode/upcase.h"
#include "platform/unicode/utf8.h"

#include <algorithm>
#include <cerrno>
#include <ctime>
#include <dirent.h>
#include <memory>
#include <sys/stat.h>
#include <unordered_map>
#include <utility>

namespace platform {

namespace {

constexpr std::size_t kMostNames = 65536;
// The coarsest time of a change, two seconds on FAT, and one for clocks that are not in step.
constexpr std::time_t kSettledAfter = 3;

struct CloseDirectory {
    void operator()(DIR* directory) const { closedir(directory); }
};

// By the name in upper case: the first in byte order.
using Names = std::unordered_map<std::u16string, std::string>;

// A folder in the state in which it was read.
struct ReadFolder {
    struct stat status {};
    Names names;
};

ReadFolder& last_folder() {
    static ReadFolder folder;
    return folder;
}

bool is_same_state(const struct stat& a, const struct stat& b) {
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino && a.st_ctim.tv_sec == b.st_ctim.tv_sec &&
           a.st_ctim.tv_nsec == b.st_ctim.tv_nsec;
}

bool is_settled(const struct stat& status) {
    return std::time(nullptr) - status.st_ctim.tv_sec >= kSettledAfter;
}

// Nothing when the text is not UTF-8.
std::optional<std::u16string> in_upper_case(std::string_view name) {
    auto text = unicode::utf8_to_utf16(name);
    if (text) {
        std::transform(text->begin(), text->end(), text->begin(), unicode::upper);
    }
    return text;
}

// Reads the folder, and remembers it if it can.
std::optional<std::string> read(const std::string& folder, const struct stat& status,
                                const std::u16string& wanted) {
    const std::unique_ptr<DIR, CloseDirectory> directory(opendir(folder.c_str()));
    if (directory == nullptr) {
        return std::nullopt;
    }
    bool is_kept = is_settled(status);
    ReadFolder read{status, {}};
    std::optional<std::string> found;
    errno = 0;
    while (const dirent* entry = readdir(directory.get())) {
        const std::string_view name(entry->d_name);
        auto upper = in_upper_case(name);
        if (upper && *upper == wanted) {
            found = found ? std::min(*found, std::string(name)) : std::string(name);
        }
        is_kept = is_kept && read.names.size() < kMostNames;
        if (is_kept && upper) {
            std::string& first = read.names.try_emplace(std::move(*upper), name).first->second;
            if (name < first) {
                first = name;
            }
        }
        errno = 0;
    }
    if (is_kept && errno == 0) {
        last_folder() = std::move(read);
    }
    return found;
}

} // namespace

std::optional<std::string> find_ignoring_case(const std::string& folder, const std::string& name) {
    const auto wanted = in_upper_case(name);
    const std::string path = folder.empty() ? "/" : folder;
    struct stat status {};
    if (!wanted || stat(path.c_str(), &status) != 0) {
        return std::nullopt;
    }
    const ReadFolder& known = last_folder();
    if (!is_same_state(known.status, status)) {
        return read(path, status, *wanted);
    }
    const auto found = known.names.find(*wanted);
    return found == known.names.end() ? std::nullopt : std::optional(found->second);
}

} // namespace platform
