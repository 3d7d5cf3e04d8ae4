// PROPVARIANT and the values of the property set engine, one into the other.
#pragma once

#include "platform/platform.h"
#include "platform/property_set/value.h"

namespace platform {

// The caller owns what the result points to (PropVariantClear). A VT_LPSTR becomes text of the ANSI
// code page; one that does not convert is handed out with the bytes that are stored. Throws
// std::bad_alloc.
PROPVARIANT variant_of(const property_set::Value& value);

// Copies; the PROPVARIANT stays the caller's. Throws Errc::invalid_argument for null pointers and
// text that is not of the ANSI code page, Errc::unsupported for types that are not written.
property_set::Value value_of(const PROPVARIANT& variant);

} // namespace platform
