#include "tests/windows/storage_sides.h"

namespace storage_sides {

SplitPath split(std::u16string_view path) {
    const std::size_t slash = path.rfind(u'/');
    if (slash == std::u16string_view::npos) {
        return {u"", std::u16string(path)};
    }
    return {std::u16string(path.substr(0, slash)), std::u16string(path.substr(slash + 1))};
}

std::unique_ptr<Side> create(Maker maker, const std::filesystem::path& file) {
    return maker == Maker::ours ? make_our_side(file, true) : make_system_side(file, true);
}

std::unique_ptr<Side> open(Maker maker, const std::filesystem::path& file) {
    return maker == Maker::ours ? make_our_side(file, false) : make_system_side(file, false);
}

} // namespace storage_sides
