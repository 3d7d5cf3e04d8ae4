// The plug-in as the commands see it: C++ values and exceptions over the eighteen exported
// functions. Kind and page of a link, which no exported function tells, are read from its link
// record.
//
// One session at a time, one presentation loaded at a time; both end with their object.
#pragma once

#include "pptlinks/arguments.h"
#include "pptlinks/failure.h"
#include "pptlinks/unread_report.h"

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
};

class Session {
  public:
    // Applies the code page and the drives, then starts the plug-in. Throws UsageError for a code
    // page or drive entry that the system does not take, StatusFailure when it cannot start.
    explicit Session(const CommonArguments& arguments);
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;
    ~Session();

    // Whether a load leaves out what it cannot read.
    bool keeps_going() const { return keeps_going_; }

  private:
    bool keeps_going_;
};

class LoadedPresentation {
  public:
    // Loads the presentation at the full path. Throws StatusFailure, as all members do.
    LoadedPresentation(const Session& session, const std::string& ansi_path);
    LoadedPresentation(const LoadedPresentation&) = delete;
    LoadedPresentation& operator=(const LoadedPresentation&) = delete;
    ~LoadedPresentation();

    const Unread& unread() const { return unread_; }
    std::int32_t link_count() const;
    Link link(std::int32_t index) const;
    std::optional<std::string> target_file_id() const;

    // False when the path stays, but for the case of letters.
    bool set_path(std::int32_t index, const std::string& path);
    void set_id(std::int32_t index, const std::string& id);
    void set_target_file_id(const std::string& id);

    // Writes the rewritten copy; the presentation is unloaded then. Gives the indexes of the
    // changed links that could not be written: pictures and objects that keep their paths,
    // hyperlinks whose displayed text stays.
    std::vector<std::int32_t> rewrite(const std::string& ansi_path);

  private:
    Unread unread_;
    bool had_own_id_ = false;
};

// The full path of the file or folder that the path of a link, `ansi_target`, leads to as seen from
// the presentation at `ansi_presentation`, whose folder becomes the process's current directory.
// Needs a session. Throws StatusFailure when nothing was found.
std::string found_target(const std::string& ansi_target, const std::string& ansi_presentation);

} // namespace pptlinks
