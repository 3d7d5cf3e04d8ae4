#include "pptlinks/listing.h"

#include "pptlinks/file_names.h"
#include "pptlinks/messages.h"
#include "pptlinks/output.h"

namespace pptlinks {

Listing read_listing(const Session& session, const std::string& file, const std::string& name) {
    try {
        Listing listing;
        listing.file = file;
        const std::string path = file_name(name).ansi;
        const LoadedPresentation presentation(session, path);
        listing.unread = presentation.unread();
        complain_of(listing.unread, file);
        listing.target_file_id = presentation.target_file_id();
        listing.links = presentation.links();
        listing.targets = look_up_targets(listing.links, path);
        return listing;
    } catch (const StatusFailure& failure) {
        return failed_listing(failure, file);
    }
}

Listing failed_listing(const StatusFailure& failure, const std::string& file) {
    complain(sentence(failure, {file, {}}));
    Listing failed;
    failed.file = file;
    failed.status = failure.status;
    return failed;
}

std::string counted(std::size_t count, const std::string& noun) {
    return std::to_string(count) + ' ' + noun + (count == 1 ? "" : "s");
}

} // namespace pptlinks
