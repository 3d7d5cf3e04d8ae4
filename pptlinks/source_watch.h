// Notices that another program changed a presentation, or put another file in its place, while a
// copy of it was made. Locks keep those out that know of them; nothing keeps a rename out.
#pragma once

#include "pptlinks/file_names.h"
#include "pptlinks/machine.h"

namespace pptlinks {

class SourceWatch {
  public:
    // From before the presentation is loaded.
    explicit SourceWatch(const FileName& source);

    // Throws FileFailure when the path does not lead to the same unchanged file any more.
    void require_same() const;

  private:
    std::string typed_;
    std::string native_;
    FileIdentity before_;
};

} // namespace pptlinks
