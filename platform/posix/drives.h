// The table of drives and shares: where on this machine a drive letter or a \\server\share of the
// documents lies. Filled by map_drive and by PPT_DRIVES (settings.h). Names compare without regard
// to case; texts are UTF-8.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace platform {

class DriveTable {
  public:
    // The one table of the process; PPT_DRIVES is read at the first call.
    static DriveTable& instance();

    // As map_drive.
    bool add(std::string_view entry);

    // The folder behind "Z:" or "\\srv\pub", without a separator at its end (so "" is the root of
    // this machine); a drive that is a share is followed to the share's own entry.
    std::optional<std::string> folder_of(std::string_view head) const;

    // The share that a drive stands for ("\\srv\pub", possibly with a folder behind it); nothing
    // for a drive that is a folder of this machine and for an unknown one.
    std::optional<std::string> share_of(std::string_view drive) const;

  private:
    const std::string* find(std::string_view head) const;

    std::map<std::u16string, std::string> targets_; // by upper-cased head
};

} // namespace platform
