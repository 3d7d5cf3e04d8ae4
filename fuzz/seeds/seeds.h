// The seed corpus, part by part.
#pragma once

#include "platform/base/bytes.h"

#include <filesystem>
#include <string>

namespace fuzz {

// A folder with a folder for each target. Failures are thrown as std::exception.
class Seeds {
  public:
    explicit Seeds(std::filesystem::path folder)
        : folder_(std::move(folder)) {}

    void add(const std::string& target, const std::string& name, bytes::View input) const;

  private:
    std::filesystem::path folder_;
};

// A whole presentation, for every target that takes one.
void add_presentation(const Seeds& seeds, const std::string& name, bytes::View image);

// Presentations of every kind of link and record.
void add_deck_seeds(const Seeds& seeds);

// Inputs of the targets that know nothing of presentations.
void add_engine_seeds(const Seeds& seeds);

} // namespace fuzz
