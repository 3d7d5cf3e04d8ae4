// What a fuzz target is made of: the function that takes one input, and `require` for what has to
// hold whatever the input is.
#pragma once

#include "platform/base/bytes.h"

namespace fuzz {

// Defined by each target, called for each input. May take 2 s of processor time.
void test_one(bytes::View data);

// Ends the process, which makes the input a finding, when the sentence does not hold.
void require(bool holds, const char* sentence);

} // namespace fuzz
