#include "pptlinks/relink_command.h"

#include "pptlinks/file_names.h"
#include "pptlinks/messages.h"
#include "pptlinks/output.h"
#include "pptlinks/output_file.h"
#include "pptlinks/relink_plan.h"
#include "pptlinks/terminal_text.h"
#include "pptlinks/text_encoding.h"

namespace pptlinks {

namespace {

// What was done, for the report.
struct Changes {
    std::vector<std::pair<std::int32_t, std::string>> paths; // index, new path
    std::size_t unchanged = 0; // asked for, but the path is the same but for the case of letters
};

std::string ansi_wish(const std::string& text, const std::string& option) {
    const std::optional<std::string> ansi = ansi_from_utf8(text);
    if (!ansi) {
        throw UsageError(option + ": '" + text +
                         "' has characters that the code page in use does not have");
    }
    return *ansi;
}

std::string listed(const std::vector<std::int32_t>& indexes) {
    std::string text = "links ";
    for (std::size_t i = 0; i < indexes.size(); ++i) {
        text += i == 0 ? "" : i + 1 == indexes.size() ? " and " : ", ";
        text += std::to_string(indexes[i]);
    }
    return text;
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

void require_movable_ids(const LoadedPresentation& presentation, const std::string& file) {
    if (presentation.keeps_ids_in_pages()) {
        throw FileFailure(file, "its ids are kept on its pages, in an old form that this version "
                                "cannot rewrite; use \"pptlinks list\" to read them");
    }
}

void require_separable(const RelinkPlan& plan, const std::string& file) {
    if (!plan.inseparable.empty()) {
        throw FileFailure(file, listed(plan.inseparable) +
                                    " are different videos in one list, and this version cannot "
                                    "change them one by one; leave them out of --set and --map");
    }
}

// What stands on the pages themselves stays as it is: picture names and displayed text.
void require_changeable(const Link& link, std::int32_t index, const RelinkArguments& arguments) {
    const std::string which = "link " + std::to_string(index);
    if (link.kind == LinkKind::picture) {
        throw FileFailure(arguments.file,
                          which + " is a linked picture, and this version cannot change linked "
                                  "pictures; leave it out of --set and --map");
    }
    if (link.is_held_by_page_text &&
        arguments.common.options.find_first_of("eh") != std::string::npos) {
        throw FileFailure(arguments.file,
                          which + " is a hyperlink in text, and this version cannot change the "
                                  "displayed text; leave e and h out of --options");
    }
}

Changes apply_paths(LoadedPresentation& presentation, const std::vector<Link>& links,
                    const RelinkPlan& plan, const RelinkArguments& arguments) {
    Changes changes;
    for (std::size_t i = 0; i < links.size(); ++i) {
        const std::optional<std::string>& path = plan.new_paths[i];
        if (!path) {
            continue;
        }
        const auto index = static_cast<std::int32_t>(i);
        if (!presentation.set_path(index, *path)) {
            ++changes.unchanged;
            continue;
        }
        require_changeable(links[i], index, arguments);
        changes.paths.emplace_back(index, *path);
    }
    return changes;
}

void apply_ids(LoadedPresentation& presentation, const RelinkArguments& arguments) {
    for (const IndexedValue& wish : arguments.ids) {
        presentation.set_id(wish.index, wish.value);
    }
    if (arguments.target_id) {
        presentation.set_target_file_id(*arguments.target_id);
    }
}

std::string counted(std::size_t count, const std::string& noun) {
    return std::to_string(count) + ' ' + noun + (count == 1 ? "" : "s");
}

std::string report(const RelinkArguments& arguments, const std::vector<Link>& links,
                   const RelinkPlan& plan, const Changes& changes) {
    std::string out;
    for (const auto& [index, path] : changes.paths) {
        const Link& link = links[static_cast<std::size_t>(index)];
        out += std::to_string(index) + ": ";
        append_terminal_text(out, wide_from_ansi(link.path));
        out += " -> ";
        append_terminal_text(out, wide_from_ansi(path));
        out.push_back('\n');
    }
    for (const std::vector<std::int32_t>& uses : plan.joined) {
        out += listed(uses) + " are one object and change together\n";
    }
    out += terminal_text_from_utf8(arguments.out) + ": " + std::to_string(changes.paths.size()) +
           " of " + counted(links.size(), "link") + " changed";
    if (changes.unchanged > 0) {
        out += ", " + std::to_string(changes.unchanged) + " unchanged (same path)";
    }
    if (!arguments.ids.empty()) {
        out += ", " + counted(arguments.ids.size(), "link id") + " set";
    }
    return out + (arguments.target_id ? ", id of the presentation set\n" : "\n");
}

std::string relink(const RelinkArguments& arguments) {
    const FileName source = file_name(arguments.file);
    OutputFile output(source, file_name(arguments.out));
    LoadedPresentation presentation(source.ansi);
    require_movable_ids(presentation, arguments.file);
    require_links(presentation, arguments);
    const std::vector<Link> links = presentation.links();
    const RelinkPlan plan = plan_relink(links, path_wishes(arguments));
    require_separable(plan, arguments.file);
    const Changes changes = apply_paths(presentation, links, plan, arguments);
    apply_ids(presentation, arguments);
    presentation.rewrite(output.create());
    output.publish();
    return report(arguments, links, plan, changes);
}

} // namespace

int run_relink(const RelinkArguments& arguments) {
    const Session session(arguments.common);
    try {
        print(relink(arguments));
        return 0;
    } catch (const StatusFailure& failure) {
        complain(sentence(failure, {arguments.file, arguments.out}));
        return kExitFileFailed;
    }
}

} // namespace pptlinks
