// The plug-in as the commands see it: C++ values and exceptions over the eighteen exported
// functions. Kind and page of a link, which no exported function tells, are read from its link
// record.
//
// One session at a time, one presentation loaded at a time; both end with their object.
#pragma once

#include "pptlinks/arguments.h"
#include "pptlinks/failure.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace pptlinks {

enum class LinkKind { hyperlink, ole, movie, midi, sound, picture };

// "hyperlink", "picture" and so on.
std::string_view name_of(LinkKind kind);

// One link; texts in the ANSI code page.
struct Link {
    LinkKind kind = LinkKind::hyperlink;
    std::string page; // "slide 3", "master 1", "notes 2"
    std::string path;
    std::string text;              // that carries a text hyperlink
    std::optional<std::string> id; // decimal
    // Where the external object stands in the presentation's list of them, -1 for a picture; a list
    // of videos there gives all its objects the same number.
    std::int32_t object_list_ordinal = -1;
    std::uint32_t external_object_id = 0;
    // A hyperlink on a piece of a page's text, which that page holds too.
    bool is_held_by_page_text = false;
};

class Session {
  public:
    // Applies the code page and the drives, then starts the plug-in. Throws UsageError for a code
    // page or drive entry that the system does not take, StatusFailure when it cannot start.
    explicit Session(const CommonArguments& arguments);
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;
    ~Session();
};

class LoadedPresentation {
  public:
    // Loads the presentation at the full path. Throws StatusFailure, as all members do.
    explicit LoadedPresentation(const std::string& ansi_path);
    LoadedPresentation(const LoadedPresentation&) = delete;
    LoadedPresentation& operator=(const LoadedPresentation&) = delete;
    ~LoadedPresentation();

    std::int32_t link_count() const;
    Link link(std::int32_t index) const;
    std::vector<Link> links() const;
    std::optional<std::string> target_file_id() const;
    // Ids of links stand in the pages' own records.
    bool keeps_ids_in_pages() const;

    // False when the path stays, but for the case of letters.
    bool set_path(std::int32_t index, const std::string& path);
    void set_id(std::int32_t index, const std::string& id);
    void set_target_file_id(const std::string& id);

    // Writes the rewritten copy; the presentation is unloaded then.
    void rewrite(const std::string& ansi_path);
};

} // namespace pptlinks
