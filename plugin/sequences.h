// The two sequences behind the exports of the same kind. They return status codes and throw nothing
// but std::bad_alloc before their first step.
#pragma once

#include <cstdint>

namespace ppt {

std::int32_t load_file(const char* path, std::int32_t flags);
std::int32_t rewrite_file(char* path, std::int32_t flags);

} // namespace ppt
