// Load, change every link, rewrite, load the copy: the links read back as they were written.
#include "fuzz/support/deck_session.h"
#include "fuzz/support/target.h"
#include "plugin/exports.h"
#include "plugin/state.h"

#include <algorithm>
#include <map>

namespace {

using Paths = std::vector<std::string>;

constexpr const char* kCopy = "copy.ppt";

// For each link the first one that is of the same object, else the first that has the same path. Of
// the uses of an object that is listed without a path one may have got it from the properties.
std::vector<std::size_t> first_of_each(const Paths& paths) {
    std::map<std::int32_t, std::size_t> of_object;
    std::map<std::string, std::size_t> of_path;
    std::vector<std::size_t> first;
    for (std::size_t i = 0; i < paths.size(); ++i) {
        const std::size_t same_path = of_path.try_emplace(paths[i], i).first->second;
        const std::int32_t object = ppt::state().links.links().at(i).object_list_ordinal;
        first.push_back(object < 0 ? same_path
                                   : of_object.try_emplace(object, same_path).first->second);
    }
    return first;
}

// Gives every link another path, shorter or longer than the old one, those of one object the same.
Paths change_links(const Paths& old) {
    Paths paths;
    const std::vector<std::size_t> first = first_of_each(old);
    for (std::size_t i = 0; i < old.size(); ++i) {
        const std::size_t number = first[i];
        const std::size_t length = (old[number].size() + 7 * number) % 60;
        paths.push_back("D:\\" + std::to_string(number) + std::string(length, 'n') + ".doc");
        const auto index = static_cast<std::int32_t>(i);
        fuzz::require(j_setLinkFileName(index, paths.back().c_str(), 0) == 0,
                      "every link takes another path");
        const id64 id{{1 + static_cast<std::uint32_t>(i), 0}};
        fuzz::require(j_setLinkId(index, 0, &id) == 0, "every link takes an id");
    }
    return paths;
}

bool was_written(std::size_t link) {
    const std::vector<std::uint32_t>& not_written = ppt::state().links_not_written;
    return std::find(not_written.begin(), not_written.end(), link) == not_written.end();
}

void compare(const Paths& now, const Paths& wanted) {
    fuzz::require(now.size() == wanted.size(), "the copy has as many links as the original");
    for (std::size_t i = 0; i < now.size(); ++i) {
        fuzz::require(!was_written(i) || now[i] == wanted[i],
                      "a link that was written reads back as it was set");
    }
}

} // namespace

void fuzz::test_one(bytes::View data) {
    static fuzz::DeckSession session;
    const fuzz::DeckInput input = fuzz::deck_input(data);
    if (session.load(input) == 0) {
        const Paths wanted = change_links(session.link_paths());
        if (session.rewrite(kCopy) == 0) {
            fuzz::require(session.load_file(kCopy) == 0, "what was rewritten can be loaded");
            compare(session.link_paths(), wanted);
        }
        fuzz::require(session.folder().read(fuzz::DeckSession::kDeck) == input.image,
                      "the loaded file is never written");
    }
    session.unload();
}
