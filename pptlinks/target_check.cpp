#include "pptlinks/target_check.h"

#include "plugin/status.h"
#include "pptlinks/machine.h"
#include "pptlinks/messages.h"

#include <algorithm>
#include <unordered_map>

namespace pptlinks {

namespace {

namespace status = ppt::status;

constexpr const char* kUnmapped = "its drive or share is not known here, name it with --drive";
constexpr const char* kNoFolder = "the folder of the presentation cannot be reached";

bool is_letter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool is_scheme_character(char c) {
    return is_letter(c) || (c >= '0' && c <= '9') || c == '+' || c == '-' || c == '.';
}

// A relative path lies below the presentation's folder, which was mapped when that was opened.
bool is_unmapped(const std::string& path) {
    return native_path(path).empty();
}

Target not_found(const StatusFailure& failure, const std::string& path) {
    switch (failure.status) {
    case status::kFileNotFound:
        if (is_unmapped(path)) {
            return {TargetState::unreachable, {}, kUnmapped};
        }
        return {TargetState::missing, {}, problem_of(failure)};
    case status::kPathNotFound:
        return {TargetState::unreachable, {}, kNoFolder};
    case status::kAccessDenied:
        return {TargetState::denied, {}, problem_of(failure)};
    case status::kBadPathName:
    case status::kInvalidName:
        return {TargetState::invalid, {}, problem_of(failure)};
    default:
        return {TargetState::failed, {}, problem_of(failure)};
    }
}

Target look_up(const std::string& path, const std::string& presentation) {
    if (path.empty() || is_address(path)) {
        return {};
    }
    try {
        return {TargetState::found, found_target(path, presentation), {}};
    } catch (const StatusFailure& failure) {
        return not_found(failure, path);
    }
}

} // namespace

std::string_view name_of(TargetState state) {
    constexpr std::string_view kNames[] = {"found",   "missing", "unreachable", "denied",
                                           "invalid", "failed",  "unchecked"};
    return kNames[static_cast<std::size_t>(state)];
}

bool is_address(std::string_view path) {
    const std::string_view scheme = path.substr(0, path.find(':'));
    return scheme.size() >= 2 && scheme.size() < path.size() && is_letter(scheme.front()) &&
           std::all_of(scheme.begin(), scheme.end(), is_scheme_character);
}

std::vector<Target> look_up_targets(std::span<const Link> links, const std::string& ansi_path) {
    std::unordered_map<std::string, Target> known;
    std::vector<Target> targets;
    targets.reserve(links.size());
    for (const Link& link : links) {
        const auto [entry, is_new] = known.try_emplace(link.path);
        if (is_new) {
            entry->second = look_up(link.path, ansi_path);
        }
        targets.push_back(entry->second);
    }
    return targets;
}

} // namespace pptlinks
