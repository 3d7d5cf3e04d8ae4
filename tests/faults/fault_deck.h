// A small presentation that holds every kind of link and of id, and what a host sees of it.
#pragma once

#include "tests/support/presentation_builder.h"

#include <cstdint>
#include <string>
#include <vector>

namespace fault {

enum class Ids {
    as_properties, // in the document properties
    on_pages,      // in tags and names of pages, as older versions kept them
};

presentation_builder::Deck every_kind_of_link(Ids ids);

// Paths, ids and texts of the links and the id of the presentation that is loaded, a line for each.
std::string loaded_links();

// Every path of the loaded presentation gets another one, longer or shorter, and every link an id.
// `mark` goes into the paths. Gives the paths, in the order of the links.
std::vector<std::string> change_all_links(const std::string& mark);

} // namespace fault
