#include "pptlinks/check_command.h"

#include "pptlinks/file_names.h"
#include "pptlinks/json_output.h"
#include "pptlinks/listing.h"
#include "pptlinks/output.h"
#include "pptlinks/target_check.h"
#include "pptlinks/terminal_text.h"
#include "pptlinks/text_encoding.h"

namespace pptlinks {

namespace {

// Links are looked up, shown and forgotten one by one: a path may be long and have many uses.
class FileCheck {
  public:
    FileCheck(const LoadedPresentation& presentation, const std::string& file,
              const std::string& name)
        : presentation_(presentation)
        , file_(file)
        , targets_(file_name(name).ansi) {}

    void print_text();
    void print_json();
    // Whether all of the file could be read and nothing that it links to is missing.
    bool is_good() const { return missing_ == 0 && presentation_.unread().count == 0; }

  private:
    const Target& look_up(const Link& link);
    std::string summary() const;

    const LoadedPresentation& presentation_;
    const std::string& file_;
    TargetLookup targets_;
    std::size_t missing_ = 0;
    std::size_t unchecked_ = 0;
};

const Target& FileCheck::look_up(const Link& link) {
    const Target& target = targets_.target_of(link.path);
    missing_ += target.is_missing() ? 1 : 0;
    unchecked_ += target.state == TargetState::unchecked ? 1 : 0;
    return target;
}

// "talk.ppt: 2 movie slide 1 C:\film.avi: there is no such file"
void append_missing(std::string& out, const std::string& file, std::int32_t index, const Link& link,
                    const Target& target) {
    out += terminal_text_from_utf8(file) + ": " + std::to_string(index) + ' ';
    out += name_of(link.kind);
    out += ' ';
    out += link.page.empty() ? kNone : std::string_view(link.page);
    out += ' ';
    append_terminal_text(out, wide_from_ansi(link.path));
    out += ": " + target.problem + '\n';
}

std::string FileCheck::summary() const {
    const auto count = static_cast<std::size_t>(presentation_.link_count());
    return terminal_text_from_utf8(file_) + ": " + counted(count, "link") + ": " +
           std::to_string(count - missing_ - unchecked_) + " found, " + std::to_string(missing_) +
           " missing, " + std::to_string(unchecked_) + " not checked" +
           summary_of(presentation_.unread()) + '\n';
}

void FileCheck::print_text() {
    std::string out;
    for (std::int32_t i = 0; i < presentation_.link_count(); ++i) {
        const Link link = presentation_.link(i);
        const Target& target = look_up(link);
        if (target.is_missing()) {
            append_missing(out, file_, i, link, target);
            print_when_large(out);
        }
    }
    print(out + summary());
}

void FileCheck::print_json() {
    std::string out;
    append_json_head(out, {file_, 0, presentation_.unread(), presentation_.target_file_id()});
    for (std::int32_t i = 0; i < presentation_.link_count(); ++i) {
        const Link link = presentation_.link(i);
        append_json_link(out, link, static_cast<std::size_t>(i), &look_up(link));
        print_when_large(out);
    }
    append_json_end(out);
    print(out);
}

bool check_file(const Session& session, const std::string& file, const std::string& name,
                bool json) {
    const auto presentation = load_to_list(session, file, name, json);
    if (!presentation) {
        return false;
    }
    FileCheck check(*presentation, file, name);
    json ? check.print_json() : check.print_text();
    return check.is_good();
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
