// The walk over the children of a list in which one that cannot be read need not cost the rest:
// with the letter "k" among the options it is left out and the walk goes on behind it. Without the
// letter its failure is thrown, as everywhere.
#pragma once

#include "plugin/failure.h"
#include "plugin/state.h"
#include "reader/record.h"

#include <cstdint>

namespace ppt {

// Whether a failure of reading one object leaves that object out instead of ending the load.
bool b_mayLeaveOut(std::int32_t status);

// Stands the stream behind `child` of `list`, null for behind all children. False when the stream
// ends before.
bool b_resumeBehind(PptRecord& list, const PptRecord* child);

// Reads the next child of `list` and hands it to `read`, which consumes it. A failure that may
// leave the child out calls `leave_out` with the child, null when it could not even be read, and
// the status; then nothing behind it is read. False when there is no further child.
template <class Read, class LeaveOut>
bool b_readNextChild(PptRecord& list, Read read, LeaveOut leave_out) {
    PptRecord* child = nullptr;
    const std::int32_t status = status_or(status::kDamaged, [&] {
        child = list.ps_nextChild();
        if (child != nullptr) {
            read(*child);
        }
        return status::kSuccess;
    });
    if (status == status::kSuccess) {
        return child != nullptr;
    }
    if (!b_mayLeaveOut(status) || !b_resumeBehind(list, child)) {
        throw static_cast<int>(status);
    }
    leave_out(child, status);
    return true;
}

} // namespace ppt
