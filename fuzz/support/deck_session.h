// A presentation from an input, as a host sees it.
#pragma once

#include "fuzz/support/deck_input.h"
#include "fuzz/support/memory_folder.h"

#include <cstdint>
#include <string>
#include <vector>

namespace fuzz {

// The plug-in with its options and a folder for its files. There is one at a time.
class DeckSession {
  public:
    DeckSession();

    // Writes the deck to a file and loads it; returns the status.
    std::int32_t load(const DeckInput& input);
    std::int32_t load_file(const char* name) const;
    // Rewrites the loaded deck to a file of that name.
    std::int32_t rewrite(const char* name) const;
    void unload() const;

    // What j_getLinkFileName gives for each link. Asks for everything else that a link has, too.
    std::vector<std::string> link_paths() const;

    const MemoryFolder& folder() const { return folder_; }

    static constexpr const char* kDeck = "deck.ppt";

  private:
    MemoryFolder folder_;
};

} // namespace fuzz
