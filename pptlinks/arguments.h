// What the user asks for, taken from the command line. All texts are in UTF-8.
#pragma once

#include "pptlinks/path_map.h"

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace pptlinks {

struct CommonArguments {
    std::string options; // letters for the plug-in
    std::optional<std::uint32_t> code_page;
    std::vector<std::string> drives;
    bool strict = false; // the first object that cannot be read fails its file
};

struct FilesArguments {
    CommonArguments common;
    std::vector<std::string> files;
    bool json = false;
};

struct ListArguments : FilesArguments {};
struct CheckArguments : FilesArguments {};

// A value for the link with the index: a path, or an id in decimal.
struct IndexedValue {
    std::int32_t index = 0;
    std::string value;
};

struct RelinkArguments {
    CommonArguments common;
    std::string file;
    std::string out;
    std::vector<IndexedValue> paths;
    std::vector<PathMapEntry> maps;
    std::vector<IndexedValue> ids;
    std::optional<std::string> target_id;
    bool trust_targets = false;
};

// Nothing to do but to print: help or version (status 0), or what is wrong with the arguments,
// which may quote them.
struct PrintAndExit {
    int status = 0;
    std::string out;
    std::string error;
};

inline constexpr int kExitFailed = 1; // a file, or a link of it
inline constexpr int kExitWrongUsage = 2;

using Command = std::variant<ListArguments, CheckArguments, RelinkArguments, PrintAndExit>;

Command parse_arguments(int argc, const char* const* argv);

} // namespace pptlinks
