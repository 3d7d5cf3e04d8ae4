// The state of one rewrite: the loaded presentation, the copy that is being rewritten in place, and
// how far both are.
//
// Nothing is written before the first rewritten object, since the copy already holds those bytes.
// From then on everything behind it is moved by copying it anew from the loaded presentation.
#pragma once

#include "plugin/state.h"
#include "reader/presentation.h"
#include "rewriter/copy_writer.h"
#include "rewriter/object_extents.h"
#include "rewriter/shift_table.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace ppt {

struct RewriteCopy {
    RewriteCopy(PptPresentation& loaded_presentation, PptPresentation& copy_presentation)
        : loaded(loaded_presentation)
        , copy(copy_presentation)
        , writer(copy_presentation.ps_getDocumentStream())
        , extents(loaded_presentation)
        , written_links(state().links.links().size()) {}

    bool has_written() const { return written; }

    // Notes that the loaded stream was consumed, and the copy written, up to their current
    // positions.
    void v_notePositions() {
        copy_position = writer.tell();
        loaded_position = loaded.n_tellDocument();
        written = true;
    }

    // Gives up what was written of the object at `loaded_offset` from `copy_offset` on: the object
    // is brought with what follows it.
    void v_returnTo(std::uint32_t loaded_offset, std::uint32_t copy_offset) {
        writer.seek(copy_offset);
        copy_position = copy_offset;
        loaded_position = loaded_offset;
    }

    PptPresentation& loaded; // only read
    PptPresentation& copy;
    CopyWriter writer; // on the copy's document stream
    ShiftTable shifts;
    ObjectExtents extents; // of the objects visited so far
    // By table index: the links whose picture name, displayed text or OLE source was written.
    std::vector<bool> written_links;

    bool written = false;
    std::uint32_t copy_position = 0;   // behind the last record written
    std::uint32_t loaded_position = 0; // behind the last record consumed and written
    std::uint32_t first_moved_offset =
        0; // of the first object moved by a change before it; 0: none
};

} // namespace ppt
