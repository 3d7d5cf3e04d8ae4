// Inputs of the targets that load a presentation. The first byte chooses the options and the form:
//
//   a whole compound file, or
//   its streams: two lengths of 16 bits, then "Current User", "DocumentSummaryInformation" and
//   "PowerPoint Document". Records reach the engine here that a mutated compound file would hide.
#pragma once

#include "platform/base/bytes.h"

#include <string>

namespace fuzz {

inline constexpr std::size_t kOptionCount = 4;

enum class DeckForm { file, streams };

struct DeckInput {
    std::string options; // letters
    bytes::Bytes image;  // of the compound file
};

// Any bytes are an input; what is missing is empty.
DeckInput deck_input(bytes::View data);

// The input that gives this deck; `options` is below kOptionCount.
bytes::Bytes encode_deck_input(std::size_t options, DeckForm form, bytes::View image);

} // namespace fuzz
