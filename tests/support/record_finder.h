// Finding records in a finished stream by what they are, so that a test damages or inspects "the
// second hyperlink" and never a number that somebody counted. Meant for streams that the builder
// made: a record that runs out of the stream is std::out_of_range.
#pragma once

#include "tests/support/record_builder.h"

#include <string>
#include <vector>

namespace presentation_builder {

struct RecordAt {
    std::size_t offset = 0; // of the header
    std::uint8_t version = 0;
    std::uint16_t instance = 0;
    std::uint16_t type = 0;
    std::uint32_t length = 0; // of the body

    std::size_t body() const { return offset + 8; }
    std::size_t end() const { return body() + length; }
    bool is_container() const { return version == 0xF; }
};

RecordAt record_at(View stream, std::size_t offset);

// The direct children of a container, in order; none for an atom.
std::vector<RecordAt> children_of(View stream, const RecordAt& parent);

// One step down: the `nth` child of the type.
struct Step {
    std::uint16_t type = 0;
    std::size_t nth = 0;
};

// The record that the steps lead to from the one at `offset`; std::out_of_range if there is none.
RecordAt find_record(View stream, std::size_t offset, std::initializer_list<Step> path);

// All records of the type at any depth below the one at `offset`, in order.
std::vector<RecordAt> find_all(View stream, std::size_t offset, std::uint16_t type);

// One sentence for each container whose children do not end where it ends.
std::vector<std::string> structure_faults(View stream, std::size_t offset);

} // namespace presentation_builder
