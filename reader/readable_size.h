// How much of a stream can be read. The stream of a damaged compound file may claim 2^31 bytes
// though its sectors end long before; what bounds work and memory must not go by the claim.
#pragma once

#include "platform/platform.h"

#include <cstdint>

namespace ppt {

// Bytes that can be read from the start of the stream on, at most `claimed`. The position stays. A
// device that cannot read the last byte looks like a stream that ends before. Throws a status code
// when memory ran out or the stream cannot seek. Cost: one byte is read where the claim is true,
// else one for each bit of it.
std::uint64_t n_readableSize(IStream* stream, std::uint64_t claimed);

} // namespace ppt
