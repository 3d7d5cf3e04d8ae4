// The one error type of the engines: a code and the place where it arose. The engines throw it; the
// adapters in platform/adapters/ catch it and translate the code in one table (error_codes.h
// there).
#pragma once

#include <stdexcept>
#include <string>

namespace platform {

enum class Errc {
    not_found,
    path_not_found,
    exists,
    access,
    write_protected,
    sharing,
    too_many_files,
    is_directory,
    corrupt,
    read_fault,
    write_fault,
    medium_full,
    too_large,
    invalid_name,
    invalid_argument,
    unsupported,
    no_memory,
    not_compound_file,
};

class Error : public std::runtime_error {
  public:
    // `place` says in a few words what was being done, with the numbers found and allowed.
    Error(Errc error_code, const std::string& place)
        : std::runtime_error(place)
        , code_(error_code) {}

    Errc code() const { return code_; }

  private:
    Errc code_;
};

} // namespace platform
