// The document's external object list ([MS-PPT] ExObjListContainer): one template in the external
// object list of the plug-in for every hyperlink, linked sound, movie or OLE object.
#pragma once

#include "reader/record.h"

#include <cstdint>

namespace ppt {

// Reads all children of the list and returns a status code; the first failure ends it, or with the
// letter "k" leaves out the object that it befell. 8140 for a movie without a video as its first
// child and for a media container without a media atom followed by a string. A null list throws
// 8300.
std::int32_t j_walkExternalObjects(PptRecord* list);

} // namespace ppt
