#include "pptlinks/arguments.h"

#include "pptlinks/system_wording.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <charconv>
#include <sstream>
#include <system_error>

namespace pptlinks {

namespace {

constexpr const char* kDescription =
    "Lists the links of PowerPoint 97-2003 presentations to outside files, looks whether these "
    "files are there and writes copies in which the links point elsewhere. The presentations "
    "themselves are never written.";

const std::string kExamples = std::string(R"(Examples:
  pptlinks list talk.ppt
  pptlinks list --json *.ppt > links.jsonl
)") + kCheckOnDrives + R"(  pptlinks relink talk.ppt -o moved.ppt --map 'C:\media=D:\archive\media'
  pptlinks relink talk.ppt -o new.ppt --set '3=http://example.org/' --set-id 3=1001
)" + kListOnDrives + R"(
An object or page that cannot be read is left out and named, unless --strict makes its file fail.
Exit status: 0 all well, 1 a file failed, something in it could not be read or a link is not as it
should be, 2 wrong usage.
Arguments and output are in UTF-8. See "pptlinks COMMAND --help" for more.)";

constexpr const char* kListExamples = R"(Examples:
  pptlinks list talk.ppt
  pptlinks list --json *.ppt > links.jsonl)";

const std::string kCheckExamples =
    std::string(R"(Examples:
  pptlinks check talk.ppt
)") +
    kCheckOnDrives +
    R"(  pptlinks check --json talk.ppt | jq '.links[] | select(.target == "missing") | .path'

A path is looked up as seen from the folder of its presentation. Web and mail addresses and file:
URLs are not checked. With --json every link has a "target", which is "found" (then "found" holds
the full path, else null), "missing", "unreachable" (its drive or share is not mapped), "denied",
"invalid", "failed" or "unchecked".
Exit status: 0 nothing is missing, 1 something is, could not be read, or a file failed, 2 wrong
usage.)";

const std::string kRelinkExamples = std::string(R"(Examples:
  pptlinks relink talk.ppt -o moved.ppt --map 'C:\media=D:\archive\media'
  pptlinks relink talk.ppt -o new.ppt --set '3=http://example.org/' --set-id 3=1001
  pptlinks relink talk.ppt -o new.ppt --map 'http://old.example=http://new.example' --options e
)") + kTrustTargets + R"(
With the letter h in --options the text of a changed hyperlink becomes its new path, with e only
where the text was the old path. This goes for text boxes; titles and bodies as a rule keep their
words. What could not be read is in the copy as it was.
Exit status: 0 all well, 1 no copy was written or not every link could be read and changed in it,
2 wrong usage.)";

constexpr const char* kListOptions = "het"; // of check as well
constexpr const char* kRelinkOptions = "t";

// Ids that the host hands out have at most 19 digits.
constexpr std::size_t kLongestId = 19;

CLI::ValidationError wrong(const std::string& option, const std::string& value,
                           const std::string& expected) {
    return CLI::ValidationError(option + ": '" + value + "' is not " + expected);
}

// The two sides of the first '='.
std::pair<std::string, std::string> split(const std::string& text, const std::string& option,
                                          const std::string& form) {
    const std::size_t equals = text.find('=');
    if (equals == std::string::npos || equals == 0 || equals + 1 == text.size()) {
        throw wrong(option, text, "of the form " + form);
    }
    return {text.substr(0, equals), text.substr(equals + 1)};
}

std::string checked_id(const std::string& text, const std::string& option) {
    const auto is_digit = [](char c) { return c >= '0' && c <= '9'; };
    if (text.empty() || text.size() > kLongestId ||
        !std::all_of(text.begin(), text.end(), is_digit)) {
        throw wrong(option, text, "an id, a number of at most 19 digits (0 clears the id)");
    }
    return text;
}

IndexedValue indexed_value(const std::string& text, const std::string& option,
                           const std::string& form) {
    const auto [number, value] = split(text, option, form);
    IndexedValue parsed{0, value};
    const char* const end = number.data() + number.size();
    const auto result = std::from_chars(number.data(), end, parsed.index);
    if (result.ec != std::errc() || result.ptr != end || parsed.index < 0) {
        throw wrong(option, text, "of the form " + form + ", INDEX being the number of a link");
    }
    return parsed;
}

// The options as CLI11 collects them, before their values are taken apart.
struct RawRelink {
    std::vector<std::string> paths;
    std::vector<std::string> maps;
    std::vector<std::string> ids;
    std::optional<std::string> target_id;
};

CLI::Option* add_repeated(CLI::App& app, const std::string& name, std::vector<std::string>& values,
                          const std::string& form, const std::string& help) {
    return app.add_option(name, values, help)->type_name(form)->allow_extra_args(false)->take_all();
}

void add_common(CLI::App& app, CommonArguments& common) {
    app.add_option("--options", common.options,
                   "Letters that steer how hyperlinks in text are treated: h, e and t")
        ->type_name("LETTERS")
        ->capture_default_str();
    app.add_option(
           "--code-page", common.code_page,
           "Number of the ANSI code page, for example 1252; that of the locale unless given")
        ->type_name("N")
        ->group(kSettingsGroup);
    add_repeated(
        app, "--drive", common.drives, "ENTRY",
        "Where a drive or share lies: 'Z:=/mnt/z', '\\\\srv\\pub=/mnt/pub' or "
        "'Z:=\\\\srv\\pub'; may be repeated, and the environment variable PPT_DRIVES holds "
        "more, separated by ';'")
        ->group(kSettingsGroup);
    app.add_flag("--strict", common.strict,
                 "Fail on a presentation in which an object or page cannot be read, instead of "
                 "leaving that out");
}

void add_files(CLI::App& command, FilesArguments& arguments) {
    arguments.common.options = kListOptions;
    command.add_option("FILE", arguments.files, "Presentations")->required();
    command.add_flag("--json", arguments.json,
                     "One JSON object for each file, one on a line, in place of text");
    add_common(command, arguments.common);
}

CLI::App* add_list(CLI::App& app, ListArguments& list) {
    CLI::App* const command = app.add_subcommand("list", "List the links of presentations");
    command->footer(kListExamples);
    add_files(*command, list);
    return command;
}

CLI::App* add_check(CLI::App& app, CheckArguments& check) {
    CLI::App* const command = app.add_subcommand(
        "check", "Look whether the files that the links of presentations lead to are there");
    command->footer(kCheckExamples);
    add_files(*command, check);
    return command;
}

CLI::App* add_relink(CLI::App& app, RelinkArguments& relink, RawRelink& raw) {
    CLI::App* const command =
        app.add_subcommand("relink", "Write a copy of a presentation with changed links");
    command->footer(kRelinkExamples);
    relink.common.options = kRelinkOptions;
    command->add_option("FILE", relink.file, "The presentation")->required();
    command->add_option("-o,--output", relink.out, "The copy; replaced if it exists")
        ->type_name("OUT")
        ->required();
    add_repeated(
        *command, "--set", raw.paths, "INDEX=PATH",
        "Give one link a new path; may be repeated. All uses of one object change together");
    add_repeated(*command, "--map", raw.maps, "OLD=NEW",
                 "Replace the leading path OLD by NEW in every link that has it; may be repeated, "
                 "and the first entry that matches counts. Letter case does not matter, / and \\ "
                 "are equal, and OLD ends where a name ends. --set goes before --map");
    add_repeated(*command, "--set-id", raw.ids, "INDEX=ID",
                 "Give one link an id; may be repeated. 0 clears it");
    command->add_option("--target-id", raw.target_id, "Give the presentation itself an id")
        ->type_name("ID");
    command
        ->add_flag("--trust-targets", relink.trust_targets,
                   "Give linked objects their new path without looking whether its file is "
                   "there; for machines that cannot see it")
        ->group(kSettingsGroup);
    add_common(*command, relink.common);
    return command;
}

void check_options(const CommonArguments& common) {
    if (common.options.find_first_not_of("het") != std::string::npos) {
        throw wrong("--options", common.options, "made of the letters h, e and t");
    }
}

void take_apart(const RawRelink& raw, RelinkArguments& relink) {
    for (const std::string& text : raw.paths) {
        relink.paths.push_back(indexed_value(text, "--set", "INDEX=PATH"));
    }
    for (const std::string& text : raw.maps) {
        const auto [from, to] = split(text, "--map", "OLD=NEW");
        relink.maps.push_back({from, to});
    }
    for (const std::string& text : raw.ids) {
        relink.ids.push_back(indexed_value(text, "--set-id", "INDEX=ID"));
        checked_id(relink.ids.back().value, "--set-id");
    }
    if (raw.target_id) {
        relink.target_id = checked_id(*raw.target_id, "--target-id");
    }
}

} // namespace

Command parse_arguments(int argc, const char* const* argv) {
    CLI::App app(kDescription, "pptlinks");
    app.allow_windows_style_options(false); // a path may begin with a slash everywhere
    app.set_version_flag("--version", std::string("pptlinks ") + PPTLINKS_VERSION);
    app.footer(kExamples);
    app.require_subcommand(1);
    ListArguments list;
    CheckArguments check;
    RelinkArguments relink;
    RawRelink raw;
    const CLI::App* const list_command = add_list(app, list);
    const CLI::App* const check_command = add_check(app, check);
    add_relink(app, relink, raw);
    try {
        app.parse(argc, argv);
        check_options(list.common);
        check_options(check.common);
        check_options(relink.common);
        take_apart(raw, relink);
    } catch (const CLI::ParseError& error) {
        std::ostringstream out;
        std::ostringstream problem; // has lines of its own among those of the arguments
        if (app.exit(error, out, problem) == 0) {
            return PrintAndExit{0, out.str(), {}};
        }
        return PrintAndExit{kExitWrongUsage, {}, error.what()};
    }
    if (list_command->parsed()) {
        return list;
    }
    if (check_command->parsed()) {
        return check;
    }
    return relink;
}

} // namespace pptlinks
