#include "pptlinks/messages.h"

#include "plugin/status.h"
#include "pptlinks/terminal_text.h"

#include <algorithm>
#include <optional>

namespace pptlinks {

namespace {

constexpr std::string_view kProgram = "pptlinks: ";

// For a status that no row knows, such as one of a newer plug-in.
constexpr Message kUnknown{0, Culprit::presentation, "the operation failed",
                           "report this with the file"};

const Message& find_message(std::int32_t status) {
    const std::span<const Message> table = message_table();
    const auto row = std::lower_bound(
        table.begin(), table.end(), status,
        [](const Message& message, std::int32_t wanted) { return message.status < wanted; });
    return row != table.end() && row->status == status ? *row : kUnknown;
}

// The system error form: whether the code is a COM result, the code in hexadecimal, the text.
bool is_system_error(const std::vector<WideString>& parameters) {
    const auto is_hexadecimal = [](WCHAR unit) {
        return (unit >= '0' && unit <= '9') || (unit >= 'a' && unit <= 'f');
    };
    return parameters.size() == 3 && (parameters[0] == WIDE("0") || parameters[0] == WIDE("1")) &&
           !parameters[1].empty() &&
           std::all_of(parameters[1].begin(), parameters[1].end(), is_hexadecimal);
}

// The system's text without the line end and the full stop that it closes with.
std::string reason_of(const std::vector<WideString>& parameters) {
    WideView text = parameters[2];
    const std::size_t last = text.find_last_not_of(WIDE(" .\r\n"));
    text = text.substr(0, last == WideView::npos ? 0 : last + 1);
    return text.empty() ? "error " + terminal_text(parameters[1]) : terminal_text(text);
}

// What a {placeholder} stands for; none when the failure does not tell.
std::optional<std::string> value_of(std::string_view placeholder,
                                    const std::vector<WideString>& parameters) {
    const bool system_error = is_system_error(parameters);
    if (placeholder == "reason") {
        return system_error ? std::optional(reason_of(parameters)) : std::nullopt;
    }
    const auto index = static_cast<std::size_t>(placeholder.front() - '1');
    if (system_error || index >= parameters.size() || parameters[index].empty()) {
        return std::nullopt;
    }
    return terminal_text(parameters[index]);
}

// A template, or the inside of one of its brackets, with its placeholders filled. None when one has
// no value.
std::optional<std::string> fill(std::string_view text, const std::vector<WideString>& parameters) {
    std::string filled;
    while (!text.empty()) {
        const std::size_t open = text.find('{');
        filled += text.substr(0, open);
        if (open == std::string_view::npos) {
            break;
        }
        const std::size_t close = text.find('}', open);
        const auto value = value_of(text.substr(open + 1, close - open - 1), parameters);
        if (!value) {
            return std::nullopt;
        }
        filled += *value;
        text.remove_prefix(close + 1);
    }
    return filled;
}

std::string expand(std::string_view text, const std::vector<WideString>& parameters) {
    std::string expanded;
    while (!text.empty()) {
        const std::size_t open = text.find('[');
        expanded += text.substr(0, open);
        if (open == std::string_view::npos) {
            break;
        }
        const std::size_t close = text.find(']', open);
        expanded += fill(text.substr(open + 1, close - open - 1), parameters).value_or("");
        text.remove_prefix(close + 1);
    }
    return expanded;
}

std::string about(const std::string& file) {
    return std::string(kProgram) + terminal_text_from_utf8(file) + ": ";
}

} // namespace

std::string sentence(const StatusFailure& failure, const FilesAtWork& files) {
    const Message& message = find_message(failure.worded_as.value_or(failure.status));
    const bool of_copy = failure.while_rewriting && message.culprit == Culprit::copy;
    return about(of_copy ? files.copy : files.presentation) +
           expand(message.problem, failure.parameters) + "; " +
           expand(message.remedy, failure.parameters) + " (status " +
           std::to_string(failure.status) + ").";
}

std::string sentence(const FileFailure& failure) {
    return about(failure.file) + terminal_text_from_utf8(failure.what()) + ".";
}

std::string problem_of(const StatusFailure& failure) {
    return expand(find_message(failure.worded_as.value_or(failure.status)).problem,
                  failure.parameters);
}

} // namespace pptlinks
