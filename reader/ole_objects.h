// Linked OLE objects of the document's external object list ([MS-PPT] ExOleLinkContainer): the path
// of a linked source stands in the object's own storage, which is an object of the presentation.
#pragma once

#include "plugin/link_record.h"
#include "reader/record.h"

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

namespace ppt {

// The linked objects of one list. Every storage is read once, however many entries name it.
class OleObjects {
  public:
    // Appends to `found` a template for the object that an RT_ExternalOleObjectAtom declares, when
    // it is a linked one, and leaves the stream where it was. Throws 8140 for an atom that is too
    // short, for a persist id whose object is no storage, and when all storages of the list
    // together are larger than the stream; 5650 for an unknown persist id; what reading the storage
    // and its path fails with.
    void v_addOleLinkObject(const PptRecord& atom, std::int32_t ordinal,
                            std::vector<LinkRecord>& found);

  private:
    // What reading a storage came to.
    struct Source {
        std::int32_t status = 0;
        LinkPath path;
    };

    const LinkPath& path_at(std::uint32_t offset, PptPresentation& presentation);
    std::string read_path(std::uint32_t offset, PptPresentation& presentation);

    std::unordered_map<std::uint32_t, Source> sources_; // by offset of the storage
    std::uint64_t bytes_read_ = 0;
};

} // namespace ppt
