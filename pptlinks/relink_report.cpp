#include "pptlinks/relink_report.h"

#include "pptlinks/listing.h"
#include "pptlinks/output.h"
#include "pptlinks/system_wording.h"
#include "pptlinks/terminal_text.h"
#include "pptlinks/text_encoding.h"

#include <algorithm>

namespace pptlinks {

std::string listed(const std::vector<std::int32_t>& indexes) {
    std::string text = "links ";
    for (std::size_t i = 0; i < indexes.size(); ++i) {
        text += i == 0 ? "" : i + 1 == indexes.size() ? " and " : ", ";
        text += std::to_string(indexes[i]);
    }
    return text;
}

namespace {

class Report {
  public:
    Report(const RelinkArguments& arguments, const RelinkPlan& plan, const Outcome& outcome)
        : arguments_(arguments)
        , plan_(plan)
        , outcome_(outcome) {}

    void print_all();

  private:
    // Whether the link keeps its old path in the copy. Of a hyperlink that was not written only the
    // displayed text stayed.
    bool keeps_path(std::int32_t index) const;
    void add_changed_links();
    void add_joined_links();
    void add_changed_ids();
    std::size_t count_of_ids_set() const;
    void add_counts();

    const RelinkArguments& arguments_;
    const RelinkPlan& plan_;
    const Outcome& outcome_;
    std::size_t changed_ = 0;
    std::string out_;
};

bool Report::keeps_path(std::int32_t index) const {
    const std::vector<std::int32_t>& not_written = outcome_.not_written;
    return plan_.kind(index) != LinkKind::hyperlink &&
           std::binary_search(not_written.begin(), not_written.end(), index);
}

void Report::add_changed_links() {
    const auto count = static_cast<std::int32_t>(plan_.link_count());
    for (std::int32_t index = 0; index < count; ++index) {
        const std::optional<std::string> new_path = plan_.new_path(index);
        if (!new_path || keeps_path(index)) {
            continue;
        }
        ++changed_;
        out_ += std::to_string(index) + ": ";
        append_terminal_text(out_, wide_from_ansi(plan_.path(index)));
        out_ += " -> ";
        append_terminal_text(out_, wide_from_ansi(*new_path));
        out_.push_back('\n');
        print_when_large(out_);
    }
}

void Report::add_joined_links() {
    for (const std::vector<std::int32_t>& uses : plan_.joined()) {
        if (!keeps_path(uses.front())) {
            out_ += listed(uses) + " are one object and change together\n";
            print_when_large(out_);
        }
    }
}

void Report::add_changed_ids() {
    for (const std::int32_t index : outcome_.copy.id_changed) {
        out_ += "link " + std::to_string(index) + " has another id now, that of its path\n";
        print_when_large(out_);
    }
}

// Of those that were asked for.
std::size_t Report::count_of_ids_set() const {
    const auto was_set = [this](const IndexedValue& wish) {
        const auto is_in = [&wish](const std::vector<std::int32_t>& links) {
            return std::binary_search(links.begin(), links.end(), wish.index);
        };
        return !is_in(outcome_.copy.id_lost) && !is_in(outcome_.copy.id_not_taken);
    };
    return static_cast<std::size_t>(
        std::count_if(arguments_.ids.begin(), arguments_.ids.end(), was_set));
}

void Report::add_counts() {
    const std::vector<std::int32_t>& not_written = outcome_.not_written;
    const auto kept = static_cast<std::size_t>(
        std::count_if(not_written.begin(), not_written.end(),
                      [this](std::int32_t index) { return keeps_path(index); }));
    const std::size_t kept_texts = not_written.size() - kept;
    out_ += terminal_text_from_utf8(arguments_.out) + ": " + std::to_string(changed_) + " of " +
            counted(plan_.link_count(), "link") + " changed";
    if (outcome_.same > 0) {
        out_ += ", " + std::to_string(outcome_.same) + " unchanged (same path)";
    }
    if (!plan_.not_known_whole().empty()) {
        out_ += ", " + std::to_string(plan_.not_known_whole().size()) +
                " unchanged (characters not in the code page)";
    }
    if (kept > 0) {
        out_ += ", " + std::to_string(kept) + " unchanged (could not be written)";
    }
    if (kept_texts > 0) {
        out_ += ", " + counted(kept_texts, "displayed text") + " unchanged (could not be written)";
    }
    if (!arguments_.ids.empty()) {
        out_ += ", " + counted(count_of_ids_set(), "link id") + " set";
    }
    if (arguments_.target_id && !outcome_.copy.own_id) {
        out_ += ", id of the presentation set";
    }
    out_ += summary_of(outcome_.unread) + '\n';
}

// "link 3 (picture C:\\map.wmf) "
std::string which_link(const RelinkPlan& plan, std::int32_t index) {
    return "link " + std::to_string(index) + " (" + std::string(name_of(plan.kind(index))) + ' ' +
           utf8_from_wide(wide_from_ansi(plan.path(index))) + ") ";
}

void Report::print_all() {
    add_changed_links();
    add_joined_links();
    add_changed_ids();
    add_counts();
    print(out_);
}

} // namespace

void print_report(const RelinkArguments& arguments, const RelinkPlan& plan,
                  const Outcome& outcome) {
    Report(arguments, plan, outcome).print_all();
}

std::string why_not_mapped(const RelinkPlan& plan, std::int32_t index) {
    return which_link(plan, index) +
           "keeps its path, because that has characters that the code page in use does not have; "
           "give the new path with --set" +
           kOrChangeCodePage;
}

std::string why_other_path(const RelinkPlan& plan, std::int32_t index) {
    return which_link(plan, index) +
           "has another path in the copy than the one that was written; compare both with "
           "'pptlinks list', and report this with the file";
}

std::string why_without_id(const RelinkPlan& plan, std::int32_t index, bool leaves_folder) {
    return which_link(plan, index) +
           (leaves_folder ? "has lost its id, which the document properties keep by its path as "
                            "seen from the presentation's folder; write the copy into that folder, "
                            "named as the presentation's is"
                          : "has lost its id, which the document properties did not take");
}

std::string why_other_id(const RelinkPlan& plan, std::int32_t index) {
    return which_link(plan, index) +
           "has not the id that it was to have: the document properties, which keep ids by path, "
           "did not take it or have another for this path";
}

std::string why_not_written(const RelinkPlan& plan, std::int32_t index) {
    const std::string which = which_link(plan, index);
    switch (plan.kind(index)) {
    case LinkKind::hyperlink:
        return which + "leads to its new path, but the text that shows it could not be changed; "
                       "change that text by hand";
    case LinkKind::picture:
        return which + "keeps its path, because the place of the name on its page is not certain; "
                       "link the picture anew in the program that made the file";
    default:
        return which +
               "keeps its path, because the new one is no full path of a file that is "
               "there, or its folder or name is too long; " +
               kFindSource;
    }
}

} // namespace pptlinks
