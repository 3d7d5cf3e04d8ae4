// A small disk in memory, mounted on a folder where only this process and its children see it.
#pragma once

#include <string>

namespace fault {

class SmallDisk {
  public:
    // `options` as of tmpfs(5), for instance "size=8192". The process gets mounts of its own for
    // the rest of its life, and stands as root in a user namespace when it is not root already.
    SmallDisk(const std::string& folder, const std::string& options);
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;
    ~SmallDisk();

    // Empty when the disk is there; else why this machine mounts none.
    const std::string& why_not() const { return why_not_; }

  private:
    std::string folder_;
    std::string why_not_;
};

} // namespace fault
