#include "pptlinks/source_watch.h"

#include "pptlinks/failure.h"

namespace pptlinks {

SourceWatch::SourceWatch(const FileName& source)
    : typed_(source.typed)
    , native_(native_path(source.ansi))
    , before_(identity_of(native_)) {}

void SourceWatch::require_same() const {
    if (identity_of(native_) != before_) {
        throw FileFailure(typed_, "another program changed it while it was read; try again");
    }
}

} // namespace pptlinks
