#include "pptlinks/relink_command.h"

#include "pptlinks/copy_check.h"
#include "pptlinks/file_names.h"
#include "pptlinks/machine.h"
#include "pptlinks/messages.h"
#include "pptlinks/output.h"
#include "pptlinks/output_file.h"
#include "pptlinks/relink_plan.h"
#include "pptlinks/relink_report.h"
#include "pptlinks/source_watch.h"
#include "pptlinks/text_encoding.h"

namespace pptlinks {

namespace {

std::string ansi_wish(const std::string& text, const std::string& option) {
    if (!is_utf8(text)) {
        throw UsageError(option + ": '" + text + "' is not valid UTF-8");
    }
    const std::optional<std::string> ansi = ansi_from_utf8(text);
    if (!ansi) {
        throw UsageError(option + ": '" + text +
                         "' has characters that the code page in use does not have");
    }
    return *ansi;
}

PathWishes path_wishes(const RelinkArguments& arguments) {
    PathWishes wishes;
    for (const IndexedValue& wish : arguments.paths) {
        const std::string path = ansi_wish(wish.value, "--set");
        const auto [known, is_new] = wishes.paths.try_emplace(wish.index, path);
        if (!is_new && known->second != path) {
            throw UsageError("--set: link " + std::to_string(wish.index) +
                             " cannot get two different paths");
        }
    }
    for (const PathMapEntry& entry : arguments.maps) {
        wishes.maps.push_back({ansi_wish(entry.from, "--map"), ansi_wish(entry.to, "--map")});
    }
    return wishes;
}

// Asks the plug-in for every link that the user named, so that it refuses those that are not there.
void require_links(const LoadedPresentation& presentation, const RelinkArguments& arguments) {
    for (const IndexedValue& wish : arguments.paths) {
        presentation.link(wish.index);
    }
    for (const IndexedValue& wish : arguments.ids) {
        presentation.link(wish.index);
    }
}

std::function<Link(std::int32_t)> links_of(const LoadedPresentation& presentation) {
    return [&presentation](std::int32_t index) { return presentation.link(index); };
}

RelinkPlan make_plan(const LoadedPresentation& presentation, const RelinkArguments& arguments) {
    RelinkPlan plan(presentation.link_count(), links_of(presentation));
    plan.apply(path_wishes(arguments));
    plan.require_separate_ids(arguments.ids, links_of(presentation));
    if (!plan.inseparable().empty()) {
        throw FileFailure(
            arguments.file,
            listed(plan.inseparable()) +
                " are different videos in one list, which takes a single path for all "
                "of them; leave them out of --set and --map");
    }
    return plan;
}

// Gives how many links have their new path already; the plan leaves those.
std::size_t apply_paths(LoadedPresentation& presentation, RelinkPlan& plan) {
    std::size_t same = 0;
    for (std::int32_t i = 0; i < presentation.link_count(); ++i) {
        const std::optional<std::string> path = plan.new_path(i);
        if (path && !presentation.set_path(i, *path)) {
            plan.leave(i);
            ++same;
        }
    }
    return same;
}

void apply_ids(LoadedPresentation& presentation, const RelinkPlan& plan,
               const RelinkArguments& arguments) {
    plan.for_each_id(arguments.ids, [&](std::int32_t index, const std::string& id) {
        presentation.set_id(index, id);
    });
    if (arguments.target_id) {
        presentation.set_target_file_id(*arguments.target_id);
    }
}

// The links that keep their path. Whatever comes of a presentation that changes meanwhile is not
// kept.
std::vector<std::int32_t> rewrite(LoadedPresentation& presentation, const SourceWatch& source,
                                  OutputFile& output) {
    try {
        std::vector<std::int32_t> not_written = presentation.rewrite(output.create());
        source.require_same();
        return not_written;
    } catch (const StatusFailure&) {
        source.require_same();
        throw;
    }
}

// Throws FileFailure for a copy that nobody should get.
CopyDifferences read_back(const Session& session, const CopyCheck& check, const OutputFile& output,
                          const RelinkPlan& plan, const Outcome& outcome, const std::string& file) {
    std::optional<CopyDifferences> differences =
        check.differences(session, output.temporary(), plan, outcome.not_written);
    if (!differences) {
        throw FileFailure(file,
                          "its copy could not be read back with all links, so it was not kept; "
                          "the presentation is damaged or built in a way that is not "
                          "understood");
    }
    return *std::move(differences);
}

// What the user has to know of a copy beside the report.
void complain_of(const RelinkPlan& plan, const Outcome& outcome, const std::string& out) {
    for (const std::int32_t index : plan.not_known_whole()) {
        complain(sentence(FileFailure(out, why_not_mapped(plan, index))));
    }
    for (const std::int32_t index : outcome.not_written) {
        complain(sentence(FileFailure(out, why_not_written(plan, index))));
    }
    for (const std::int32_t index : outcome.copy.other_path) {
        complain(sentence(FileFailure(out, why_other_path(plan, index))));
    }
    for (const std::int32_t index : outcome.copy.id_lost) {
        complain(sentence(FileFailure(out, why_without_id(plan, index, outcome.leaves_folder))));
    }
    for (const std::int32_t index : outcome.copy.id_not_taken) {
        complain(sentence(FileFailure(out, why_other_id(plan, index))));
    }
    if (outcome.copy.own_id) {
        complain(sentence(FileFailure(out, "its document properties did not take the id of the "
                                           "presentation")));
    }
}

FileName name_of_copy(const std::string& out) {
    try {
        return file_name(out);
    } catch (StatusFailure& failure) {
        failure.while_rewriting = true;
        throw;
    }
}

// Gives the exit status.
int relink(const Session& session, const RelinkArguments& arguments) {
    const FileName source = file_name(arguments.file);
    OutputFile output(source, name_of_copy(arguments.out));
    const SourceWatch watch(source);
    LoadedPresentation presentation(session, source.ansi);
    complain_of(presentation.unread(), arguments.file);
    require_links(presentation, arguments);
    RelinkPlan plan = make_plan(presentation, arguments);
    Outcome outcome;
    outcome.same = apply_paths(presentation, plan);
    outcome.unread = presentation.unread();
    apply_ids(presentation, plan, arguments);
    plan.keep_ids(links_of(presentation));
    const CopyCheck check(presentation, arguments.ids);
    outcome.not_written = rewrite(presentation, watch, output);
    outcome.leaves_folder = !output.is_beside(source);
    outcome.copy = read_back(session, check, output, plan, outcome, arguments.file);
    output.publish();
    complain_of(plan, outcome, arguments.out);
    print_report(arguments, plan, outcome);
    const bool all_done = plan.not_known_whole().empty() && outcome.not_written.empty() &&
                          outcome.copy.is_as_asked() && outcome.unread.count == 0;
    return all_done ? 0 : kExitFailed;
}

} // namespace

int run_relink(const RelinkArguments& arguments) {
    trust_link_targets(arguments.trust_targets);
    const Session session(arguments.common);
    try {
        return relink(session, arguments);
    } catch (const StatusFailure& failure) {
        complain(sentence(failure, {arguments.file, arguments.out}));
        return kExitFailed;
    }
}

} // namespace pptlinks
