// The wording of failures: a status code of the plug-in with its error parameters becomes one
// sentence that says which file, what is wrong and what to do.
//
// A row of the table holds the two halves of the sentence. In them {1}, {2}, {3} stand for the
// error parameters and {reason} for the system's own text when the parameters describe a system
// error; a part in [brackets] is left out when a parameter that it names is missing.
#pragma once

#include "pptlinks/failure.h"

#include <cstdint>
#include <span>
#include <string>

namespace pptlinks {

// Which file a failure of a rewrite speaks of; while loading it is always the presentation.
enum class Culprit { presentation, copy };

// Stand for a status where a sentence is looked for, for what no status tells by itself.
inline constexpr std::int32_t kIsDevice = -3; // or a pipe
inline constexpr std::int32_t kIsFolder = -2;
inline constexpr std::int32_t kNameNotUtf8 = -1;

struct Message {
    std::int32_t status; // or what stands for one
    Culprit culprit;
    const char* problem;
    const char* remedy;
};

// Ascending by status.
std::span<const Message> message_table();

// The names of the files at work, as the user typed them. `copy` is empty unless one is written.
struct FilesAtWork {
    std::string presentation;
    std::string copy;
};

// The sentence, safe for a terminal, without a line end.
std::string sentence(const StatusFailure& failure, const FilesAtWork& files);
std::string sentence(const FileFailure& failure);

// Only what is wrong, to stand behind a colon: "there is no such file".
std::string problem_of(const StatusFailure& failure);

} // namespace pptlinks
