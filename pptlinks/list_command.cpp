#include "pptlinks/list_command.h"

#include "pptlinks/json_output.h"
#include "pptlinks/output.h"
#include "pptlinks/terminal_text.h"
#include "pptlinks/text_encoding.h"
#include "pptlinks/text_table.h"

namespace pptlinks {

namespace {

std::string summary(const Listing& listing) {
    const std::size_t count = listing.links.size();
    std::string line = terminal_text_from_utf8(listing.file) + ": ";
    line += count == 0 ? "no links" : counted(count, "link");
    if (listing.target_file_id) {
        line += ", id " + *listing.target_file_id;
    }
    return line + summary_of(listing.unread) + '\n';
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

// Whether everything in the file was listed.
bool list_file(const Session& session, const std::string& file, bool json) {
    const Listing listing = read_listing(session, file, file, false);
    std::string out;
    if (json) {
        append_json(out, listing);
    } else if (listing.status == 0) {
        append_table(out, listing);
    }
    print(out);
    return listing.status == 0 && listing.unread.count == 0;
}

} // namespace

int run_list(const ListArguments& arguments) {
    const Session session(arguments.common);
    bool all_listed = true;
    for (const std::string& file : arguments.files) {
        all_listed = list_file(session, file, arguments.json) && all_listed;
    }
    return all_listed ? 0 : kExitFailed;
}

} // namespace pptlinks
