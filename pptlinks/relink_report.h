// What `pptlinks relink` tells of a rewrite: what changed, and what could not be changed.
#pragma once

#include "pptlinks/copy_check.h"
#include "pptlinks/relink_plan.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace pptlinks {

// What became of a plan.
struct Outcome {
    std::size_t same = 0; // asked for, but the path is the same but for the case of letters
    // Of the links with new paths, ascending: pictures and objects that keep their old paths, and
    // hyperlinks of which only the displayed text stayed.
    std::vector<std::int32_t> not_written;
    Unread unread; // is in the copy as it was
    CopyDifferences copy;
    bool leaves_folder = false; // the copy goes into another one than the presentation's, by name
};

// "links 0, 2 and 5"
std::string listed(const std::vector<std::int32_t>& indexes);

// Prints a line for each link that changed and one with the counts; terminal text. Throws
// FileFailure when not all of it could be printed.
void print_report(const RelinkArguments& arguments, const RelinkPlan& plan, const Outcome& outcome);

// Which link was not mapped, not written or has not its path or id, why and what to do; in UTF-8,
// without a full stop.
std::string why_not_mapped(const RelinkPlan& plan, std::int32_t index);
std::string why_other_path(const RelinkPlan& plan, std::int32_t index);
std::string why_without_id(const RelinkPlan& plan, std::int32_t index, bool leaves_folder);
std::string why_other_id(const RelinkPlan& plan, std::int32_t index);
std::string why_not_written(const RelinkPlan& plan, std::int32_t index);

} // namespace pptlinks
