// The file that a rewrite makes: written under a temporary name in the folder of OUT and renamed to
// OUT when it is whole, so that OUT is at every moment what it was before or the finished copy.
#pragma once

#include "pptlinks/file_names.h"

#include <string>

namespace pptlinks {

class OutputFile {
  public:
    // Looks whether `out` can be made from `source` and throws FileFailure when not: it is the
    // source itself, a folder or no plain file, may not be written, or its folder is missing.
    // Creates nothing yet. A symbolic link is followed (unless OUT is a Windows path), so the file
    // that it names is replaced; one that leads to nothing is refused.
    OutputFile(const FileName& source, const FileName& out);
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;
    // Removes the temporary file unless it was published.
    ~OutputFile();

    // Whether the copy is made in the folder of that file, by the name that is given for it.
    bool is_beside(const FileName& file) const;

    // Creates the temporary file, empty, and gives its path for the plug-in. Throws FileFailure,
    // and StatusFailure when its name cannot be written in the code page.
    const std::string& create();

    // The path of the temporary file for the plug-in.
    const std::string& temporary() const { return temporary_.ansi; }

    // Renames the temporary file to OUT. It gets the permissions of the file that it replaces, else
    // those of a new file, and is on the disk before anything is replaced. Throws FileFailure.
    void publish();

  private:
    [[noreturn]] void fail(const std::string& problem) const;
    void require_folder() const;
    void look_at_old_file() const;

    FileName out_;
    FileName temporary_;
    bool exists_ = false; // the temporary file
};

} // namespace pptlinks
