#include "pptlinks/list_command.h"

#include "plugin/status.h"
#include "pptlinks/file_names.h"
#include "pptlinks/json_output.h"
#include "pptlinks/messages.h"
#include "pptlinks/output.h"
#include "pptlinks/terminal_text.h"
#include "pptlinks/text_encoding.h"
#include "pptlinks/text_table.h"

namespace pptlinks {

namespace {

constexpr std::string_view kNone = "-";

Listing load_listing(const std::string& typed) {
    Listing listing;
    listing.file = typed;
    const LoadedPresentation presentation(file_name(typed).ansi);
    listing.target_file_id = presentation.target_file_id();
    listing.links = presentation.links();
    return listing;
}

std::string summary(const Listing& listing) {
    const std::size_t count = listing.links.size();
    std::string line = terminal_text_from_utf8(listing.file) + ": ";
    line += count == 0 ? "no links" : count == 1 ? "1 link" : std::to_string(count) + " links";
    if (listing.target_file_id) {
        line += ", id " + *listing.target_file_id;
    }
    return line + '\n';
}

void append_table(std::string& out, const Listing& listing) {
    out += summary(listing);
    if (listing.links.empty()) {
        return;
    }
    TextTable table({{"INDEX", true}, {"KIND"}, {"PAGE"}, {"PATH"}, {"ID", true}, {"TEXT"}});
    for (std::size_t i = 0; i < listing.links.size(); ++i) {
        const Link& link = listing.links[i];
        table.add(std::string_view(std::to_string(i)));
        table.add(name_of(link.kind));
        table.add(link.page.empty() ? kNone : std::string_view(link.page));
        table.add(wide_from_ansi(link.path));
        table.add(link.id ? std::string_view(*link.id) : kNone);
        table.add(wide_from_ansi(link.text));
    }
    table.append_to(out);
}

void print_listing(const Listing& listing, bool json) {
    std::string out;
    if (json) {
        append_json(out, listing);
    } else {
        append_table(out, listing);
    }
    print(out);
}

// Whether the file was listed.
bool list_file(const std::string& typed, bool json) {
    try {
        print_listing(load_listing(typed), json);
        return true;
    } catch (const StatusFailure& failure) {
        complain(sentence(failure, {typed, {}}));
        if (json) {
            Listing failed;
            failed.file = typed;
            failed.status = failure.status;
            print_listing(failed, json);
        }
        return false;
    }
}

} // namespace

int run_list(const ListArguments& arguments) {
    const Session session(arguments.common);
    bool all_listed = true;
    for (const std::string& file : arguments.files) {
        all_listed = list_file(file, arguments.json) && all_listed;
    }
    return all_listed ? 0 : kExitFileFailed;
}

} // namespace pptlinks
