// The order in which metadata reaches the backing. A process killed between any two writes leaves
// complete chains for every entry that the directory shows; the worst left behind is sectors that
// nobody owns. (Changes of the sibling tree that touch two directory sectors are the exception.)
#include "platform/compound_file/engine.h"

namespace compound_file {

void Engine::flush() {
    if (access_ == Access::read) {
        return;
    }
    try {
        write_metadata();
        failure_.reset();
    } catch (const platform::Error& error) {
        failure_ = error;
        throw;
    }
}

void Engine::write_metadata() {
    // What nothing refers to yet.
    sectors_.write_new(*backing_);
    minis_.write_new(*backing_);
    directory_.write_new(*backing_);
    // The longer FAT, so that every link which follows lies inside it.
    if (sectors_.lists_changed()) {
        Header longer = header_;
        sectors_.describe(longer);
        write_header(longer);
        sectors_.lists_written();
    }
    // Links: chains are now at worst longer than the sizes say.
    sectors_.write_changed(*backing_);
    minis_.write_changed(*backing_);
    if (minis_.places_changed() || directory_.places_changed()) {
        Header longer = header_;
        minis_.describe(longer);
        const bool counted = geometry_.version == Version::v4;
        longer.directory_sectors =
            counted ? static_cast<std::uint32_t>(directory_.places().size()) : 0;
        write_header(longer);
        minis_.places_written();
        directory_.places_written();
    }
    // Entries: what they refer to is complete.
    directory_.write_root_stream(*backing_);
    directory_.write_changed(*backing_);
    // No entry refers to the sectors in quarantine any more.
    if (sectors_.has_quarantine() || minis_.has_quarantine()) {
        sectors_.apply_quarantine();
        minis_.apply_quarantine();
        sectors_.write_changed(*backing_);
        minis_.write_changed(*backing_);
    }
}

void Engine::write_header(const Header& header) {
    const Header::Raw raw = header.encode();
    if (raw != header_.encode()) {
        backing_->write_at(0, raw);
    }
    header_ = header;
}

} // namespace compound_file
