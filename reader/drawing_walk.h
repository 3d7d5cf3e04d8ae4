// The walk through one page's drawing: shape groups, shapes, their option tables, text boxes and
// client data ([MS-ODRAW] OfficeArtDgContainer, OfficeArtSpgrContainer, OfficeArtSpContainer).
#pragma once

#include "plugin/link_record.h"
#include "reader/record.h"

#include <cstdint>

namespace ppt {

// Deepest nesting of shape groups that is followed; no real presentation comes near it.
inline constexpr int kDeepestGroup = 500;

// Counters of one drawing. The group counter grows with every group met, at any depth, and never
// shrinks: links are numbered only while it is 0, that is on the shapes of the drawing's own group.
struct DrawingCounters {
    std::int32_t group = -1;
    std::int32_t number_on_slide = 0;

    bool numbers_links() const { return group == 0; }
};

class DrawingWalk {
  public:
    DrawingWalk(std::uint32_t page_persist_id, std::int32_t running_index)
        : page_persist_id_(page_persist_id)
        , running_index_(running_index) {}

    // Reads all remaining children of a drawing container or shape group. Throws 8140 for groups
    // nested deeper than kDeepestGroup.
    void v_walkShapeGroup(PptRecord& container);

  private:
    void v_walkShape(PptRecord& shape);
    void v_addPictureLink(const PptRecord& options, std::uint16_t shape_type);
    void v_walkClientText(PptRecord& text_box);
    void v_walkClientData(PptRecord& client_data);
    void add_external_object(const PptRecord& reference, std::uint32_t client_data_position);

    std::uint32_t page_persist_id_;
    std::int32_t running_index_;
    DrawingCounters counters_;
    int depth_ = 0;
};

// Adds a link for each hyperlink that an interactive info container ([MS-PPT]
// MouseClickInteractiveInfoContainer, MouseOverInteractiveInfoContainer) uses: jumps, other actions
// and links to a slide are passed over, and so is a hyperlink that the document does not declare.
// Returns the last link added, or null.
LinkRecord* ps_addInteractiveLink(PptRecord& interactive_info, std::int32_t running_index,
                                  DrawingCounters& counters);

} // namespace ppt
