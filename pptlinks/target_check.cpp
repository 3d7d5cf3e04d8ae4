#include "pptlinks/target_check.h"

#include "plugin/status.h"
#include "pptlinks/machine.h"
#include "pptlinks/messages.h"
#include "pptlinks/session.h"

#include <algorithm>
#include <utility>

namespace pptlinks {

namespace {

namespace status = ppt::status;

// No more than this is remembered, however many paths a presentation has.
constexpr std::size_t kMostKnown = 10000;

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

TargetLookup::TargetLookup(std::string ansi_presentation)
    : presentation_(std::move(ansi_presentation)) {}

const Target& TargetLookup::target_of(const std::string& path) {
    const auto known = known_.find(path);
    if (known != known_.end()) {
        return known->second;
    }
    if (known_.size() >= kMostKnown) {
        known_.clear();
    }
    return known_.emplace(path, look_up(path, presentation_)).first->second;
}

} // namespace pptlinks
