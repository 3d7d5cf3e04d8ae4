#include "pptlinks/list_command.h"

#include "pptlinks/json_output.h"
#include "pptlinks/listing.h"
#include "pptlinks/output.h"
#include "pptlinks/terminal_text.h"
#include "pptlinks/text_encoding.h"
#include "pptlinks/text_table.h"

#include <cstdint>
#include <optional>
#include <string>

namespace pptlinks {

namespace {

// Links are asked for, shown and forgotten one by one: a path may be long and have many uses.
class FileListing {
  public:
    FileListing(const LoadedPresentation& presentation, const std::string& file)
        : presentation_(presentation)
        , file_(file) {}

    void print_table();
    void print_json();

  private:
    void measure();
    void add_row(const Link& link, std::int32_t index);
    std::string summary() const;

    const LoadedPresentation& presentation_;
    const std::string& file_;
    TextTable table_{{{"INDEX", true}, {"KIND"}, {"PAGE"}, {"PATH"}, {"ID", true}, {"TEXT"}}};
};

void FileListing::measure() {
    for (std::int32_t i = 0; i < presentation_.link_count(); ++i) {
        add_row(presentation_.link(i), i);
        table_.measure_row();
    }
}

void FileListing::add_row(const Link& link, std::int32_t index) {
    table_.add(std::string_view(std::to_string(index)));
    table_.add(name_of(link.kind));
    table_.add(link.page.empty() ? kNone : std::string_view(link.page));
    table_.add(wide_from_ansi(link.path));
    table_.add(link.id ? std::string_view(*link.id) : kNone);
    table_.add(wide_from_ansi(link.text));
}

std::string FileListing::summary() const {
    const auto count = static_cast<std::size_t>(presentation_.link_count());
    std::string line = terminal_text_from_utf8(file_) + ": ";
    line += count == 0 ? "no links" : counted(count, "link");
    if (const std::optional<std::string> id = presentation_.target_file_id()) {
        line += ", id " + *id;
    }
    return line + summary_of(presentation_.unread()) + '\n';
}

void FileListing::print_table() {
    measure();
    std::string out = summary();
    if (presentation_.link_count() > 0) {
        table_.append_titles_to(out);
    }
    for (std::int32_t i = 0; i < presentation_.link_count(); ++i) {
        add_row(presentation_.link(i), i);
        table_.append_row_to(out);
        print_when_large(out);
    }
    print(out);
}

void FileListing::print_json() {
    std::string out;
    append_json_head(out, {file_, 0, presentation_.unread(), presentation_.target_file_id()});
    for (std::int32_t i = 0; i < presentation_.link_count(); ++i) {
        append_json_link(out, presentation_.link(i), static_cast<std::size_t>(i), nullptr);
        print_when_large(out);
    }
    append_json_end(out);
    print(out);
}

// Whether everything in the file was listed.
bool list_file(const Session& session, const std::string& file, bool json) {
    const auto presentation = load_to_list(session, file, file, json);
    if (!presentation) {
        return false;
    }
    FileListing listing(*presentation, file);
    json ? listing.print_json() : listing.print_table();
    return presentation->unread().count == 0;
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
