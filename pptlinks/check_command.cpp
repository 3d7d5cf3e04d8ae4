#include "pptlinks/check_command.h"

#include "pptlinks/file_names.h"
#include "pptlinks/json_output.h"
#include "pptlinks/output.h"
#include "pptlinks/terminal_text.h"
#include "pptlinks/text_encoding.h"

#include <algorithm>

namespace pptlinks {

namespace {

// "talk.ppt: 2 movie slide 1 C:\film.avi: there is no such file"
void append_missing(std::string& out, const Listing& listing, std::size_t index) {
    const Link& link = listing.links[index];
    out += terminal_text_from_utf8(listing.file) + ": " + std::to_string(index) + ' ';
    out += name_of(link.kind);
    out += ' ';
    out += link.page.empty() ? kNone : std::string_view(link.page);
    out += ' ';
    append_terminal_text(out, wide_from_ansi(link.path));
    out += ": " + listing.targets[index].problem + '\n';
}

void append_text(std::string& out, const Listing& listing) {
    std::size_t missing = 0;
    std::size_t unchecked = 0;
    for (std::size_t i = 0; i < listing.targets.size(); ++i) {
        const Target& target = listing.targets[i];
        if (target.is_missing()) {
            ++missing;
            append_missing(out, listing, i);
        }
        unchecked += target.state == TargetState::unchecked ? 1 : 0;
    }
    const std::size_t count = listing.links.size();
    out += terminal_text_from_utf8(listing.file) + ": " + counted(count, "link") + ": " +
           std::to_string(count - missing - unchecked) + " found, " + std::to_string(missing) +
           " missing, " + std::to_string(unchecked) + " not checked" + summary_of(listing.unread) +
           '\n';
}

// Whether all of the file could be read and nothing that it links to is missing.
bool check_file(const Session& session, const std::string& file, const std::string& name,
                bool json) {
    const Listing listing = read_listing(session, file, name);
    std::string out;
    if (json) {
        append_json(out, listing);
    } else if (listing.status == 0) {
        append_text(out, listing);
    }
    print(out);
    return listing.status == 0 && listing.unread.count == 0 &&
           std::none_of(listing.targets.begin(), listing.targets.end(),
                        [](const Target& target) { return target.is_missing(); });
}

} // namespace

int run_check(const CheckArguments& arguments) {
    const Session session(arguments.common);
    // The first look-up changes the current directory.
    std::vector<std::string> names;
    for (const std::string& file : arguments.files) {
        names.push_back(absolute_name(file));
    }
    bool all_found = true;
    for (std::size_t i = 0; i < names.size(); ++i) {
        all_found = check_file(session, arguments.files[i], names[i], arguments.json) && all_found;
    }
    return all_found ? 0 : kExitFailed;
}

} // namespace pptlinks
