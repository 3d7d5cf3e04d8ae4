// The ways in which a command ends without its result. Each carries what the report needs; nobody
// prints before main or a command's loop over files catches it.
#pragma once

#include "platform/platform.h"

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace pptlinks {

using WideString = std::basic_string<WCHAR>;
using WideView = std::basic_string_view<WCHAR>;

// A call of the plug-in failed with a status code (messages.h words it).
class StatusFailure : public std::runtime_error {
  public:
    StatusFailure(std::int32_t failed_status, std::vector<WideString> error_parameters)
        : std::runtime_error("status " + std::to_string(failed_status))
        , status(failed_status)
        , parameters(std::move(error_parameters)) {}

    std::int32_t status;
    // Empty when the failure set none of its own.
    std::vector<WideString> parameters;
    bool while_rewriting = false;
    // The status whose sentence tells what really happened: a file of another format altogether is
    // reported as being in use, a missing folder as damage.
    std::optional<std::int32_t> worded_as;
};

// The host itself refuses a file. `what()` says what is wrong and what to do.
class FileFailure : public std::runtime_error {
  public:
    FileFailure(std::string file_as_typed, const std::string& problem)
        : std::runtime_error(problem)
        , file(std::move(file_as_typed)) {}

    std::string file; // as the user typed it
};

// The command line asks for something that cannot be meant. `what()` is the sentence, in UTF-8.
class UsageError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

} // namespace pptlinks
