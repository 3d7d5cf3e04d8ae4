#include "pptlinks/relink_report.h"

#include "pptlinks/listing.h"
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

// Whether the link keeps its old path in the copy. Of a hyperlink that was not written only the
// displayed text stayed.
bool keeps_path(const Changes& changes, const std::vector<Link>& links, std::int32_t index) {
    return links[static_cast<std::size_t>(index)].kind != LinkKind::hyperlink &&
           std::binary_search(changes.not_written.begin(), changes.not_written.end(), index);
}

std::string counts(const RelinkArguments& arguments, const std::vector<Link>& links,
                   const Changes& changes) {
    const auto kept = static_cast<std::size_t>(
        std::count_if(changes.not_written.begin(), changes.not_written.end(),
                      [&](std::int32_t index) { return keeps_path(changes, links, index); }));
    const std::size_t kept_texts = changes.not_written.size() - kept;
    std::string out = terminal_text_from_utf8(arguments.out) + ": " +
                      std::to_string(changes.paths.size() - kept) + " of " +
                      counted(links.size(), "link") + " changed";
    if (changes.same > 0) {
        out += ", " + std::to_string(changes.same) + " unchanged (same path)";
    }
    if (kept > 0) {
        out += ", " + std::to_string(kept) + " unchanged (could not be written)";
    }
    if (kept_texts > 0) {
        out += ", " + counted(kept_texts, "displayed text") + " unchanged (could not be written)";
    }
    if (!arguments.ids.empty()) {
        out += ", " + counted(arguments.ids.size(), "link id") + " set";
    }
    if (arguments.target_id) {
        out += ", id of the presentation set";
    }
    return out + summary_of(changes.unread) + '\n';
}

} // namespace

std::string report(const RelinkArguments& arguments, const std::vector<Link>& links,
                   const RelinkPlan& plan, const Changes& changes) {
    std::string out;
    for (const auto& [index, path] : changes.paths) {
        if (keeps_path(changes, links, index)) {
            continue;
        }
        out += std::to_string(index) + ": ";
        append_terminal_text(out, wide_from_ansi(links[static_cast<std::size_t>(index)].path));
        out += " -> ";
        append_terminal_text(out, wide_from_ansi(path));
        out.push_back('\n');
    }
    for (const std::vector<std::int32_t>& uses : plan.joined) {
        if (!keeps_path(changes, links, uses.front())) {
            out += listed(uses) + " are one object and change together\n";
        }
    }
    return out + counts(arguments, links, changes);
}

std::string why_not_written(const Link& link, std::int32_t index) {
    const std::string which = "link " + std::to_string(index) + " (" +
                              std::string(name_of(link.kind)) + ' ' +
                              utf8_from_wide(wide_from_ansi(link.path)) + ") ";
    switch (link.kind) {
    case LinkKind::hyperlink:
        return which + "leads to its new path, but the text that shows it could not be changed; "
                       "change that text by hand";
    case LinkKind::picture:
        return which + "keeps its path, because the place of the name on its page is not certain; "
                       "link the picture anew in the program that made the file";
    default:
        return which + "keeps its path, because the new one is no full path of a file that is "
                       "there; map its drive or share with --drive, or use --trust-targets if this "
                       "machine cannot see it";
    }
}

} // namespace pptlinks
