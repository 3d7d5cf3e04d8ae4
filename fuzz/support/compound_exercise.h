// What is done to a compound file of unknown origin, and what must hold then.
#pragma once

#include "platform/base/bytes.h"
#include "platform/compound_file/compound_file.h"

#include <map>

namespace fuzz {

// What a stream gave until it ended, or until it could not be read on.
struct StreamContent {
    bytes::Bytes bytes;
    bool whole = false;
};

// Of every stream that can be reached.
using StreamContents = std::map<compound_file::EntryId, StreamContent>;

// Lists and reads everything below the root. No entry may be reached twice.
StreamContents read_everything(compound_file::CompoundFile& file);

// Reads the image, checks it, and changes a copy of it. Damage may refuse any of that with a
// platform::Error. But whatever is changed, every other stream keeps its bytes: at once, and when
// the file is opened again, even one whose changes were never flushed.
void exercise_image(bytes::View image);

} // namespace fuzz
