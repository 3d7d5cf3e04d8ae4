// The storage of a linked OLE object, composed byte by byte as Windows writes it: monikers, the OLE
// stream around them, a compound file around that, and the record of the presentation.
#pragma once

#include "tests/support/record_builder.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace presentation_builder {

// A path as a file moniker stores it.
struct StoredPath {
    std::string ansi;
    std::optional<std::u16string> wide{};
    std::uint16_t parents = 0; // steps up; 1 is the folder of the presentation
};

// Class id and data of each kind.
Bytes file_moniker(const StoredPath& path);
Bytes item_moniker(std::string_view item, std::optional<std::u16string> wide = {});
Bytes composite_moniker(std::initializer_list<View> parts);
// A class that nobody knows, with some data.
Bytes unknown_moniker();

struct OleStream {
    Bytes relative{};
    Bytes absolute{};
    std::uint32_t flags = 1; // a linked object
    bool sizes_count_themselves = true;
    // Behind the monikers; a class, a reserved name and three times unless something else is given.
    std::optional<Bytes> rest{};
};

Bytes ole_stream(const OleStream& stream);

// Streams by name; '/' separates the storages that the path goes through.
using Streams = std::map<std::u16string, Bytes>;

inline constexpr const char16_t* kOleStreamName = u"\001Ole";

// A linked object's streams: the OLE stream, a presentation cache, class names, something below a
// storage of its own.
Streams linked_object(const OleStream& stream);

// The compound file, its root and the storages in it with class id and times.
Bytes ole_storage(const Streams& streams);

// What ole_storage put into an image, and the class id, state bits and times of each of its
// storages and streams as one text.
Streams streams_of(View image);
std::string entries_of(View image);

// ExOleObjStg, compressed or plain.
Bytes storage_record(View image, bool compressed);
// A compressed one that claims another size.
Bytes storage_record_claiming(View image, std::uint32_t size);
// The image in a record; std::runtime_error unless it unpacks to just the size that it announces.
Bytes image_in_record(View record);

} // namespace presentation_builder
