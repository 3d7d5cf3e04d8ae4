// One opened presentation: its compound file, its document stream, its current user record, its
// newest user edit and its persist directory.
//
// Owns the root storage and the document stream. Reading a damaged "Current User" stream makes the
// object invalid instead of throwing; every other failure is thrown as an `int` status code.
#pragma once

#include "platform/platform.h"
#include "reader/persist_directory.h"
#include "reader/user_edit.h"

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <unordered_set>
#include <vector>

namespace ppt {

enum class PageKind { slide = 0, master = 1, notes = 2 }; // the instance of the page's slide list

// Which page a running slide index stands for.
struct Page {
    PageKind kind = PageKind::slide;
    std::int32_t number = 0; // from 1 among the pages of its kind
};

// A user edit and the offset of its record in the document stream.
struct StoredUserEdit {
    std::uint32_t offset = 0;
    UserEdit edit;

    bool operator==(const StoredUserEdit&) const = default;
};

class PptPresentation {
  public:
    // Takes over the root storage and reads the current user record.
    explicit PptPresentation(ComPtr<IStorage> root);
    PptPresentation(const PptPresentation&) = delete;
    PptPresentation& operator=(const PptPresentation&) = delete;
    virtual ~PptPresentation() = default;

    IStorage* root() const { return root_.get(); }
    bool b_hasCurrentUser() const { return current_user_valid_; }

    // The document stream, opened read-only at the first call; null when the current user record is
    // not valid. Owned by this object.
    IStream* ps_getDocumentStream();
    void v_setDocumentStream(ComPtr<IStream> stream);
    void v_releaseDocumentStream();

    // Follows the chain of user edits from the newest back and reads each persist directory. Throws
    // 8140 for a record of another kind, for a chain that returns to an edit already read and for
    // edits or directories that together are larger than the stream.
    void v_readPersistDirectory();
    void v_buildObjectArray();

    // Whether both document streams have the same size and the same user edits, as a presentation
    // and its copy have.
    bool b_isLaidOutAs(PptPresentation& other);

    // Stands the stream at the document container. 8140 without a user edit, 5650 when the
    // directory does not list the container.
    void v_seekDocumentContainer();

    // Position in the document stream, in bytes from its start.
    std::uint32_t n_tellDocument();
    void v_seekDocument(std::uint32_t offset);
    void v_skipDocument(std::int32_t count);
    // Reads exactly `out`; 8140 where the stream ends before.
    void v_readDocument(std::span<std::uint8_t> out);
    // Whether the stream holds `count` more bytes and a seek can skip them.
    bool b_holdsDocumentBytes(std::uint32_t count);
    // Throws 8140 unless it does.
    void v_requireDocumentBytes(std::uint32_t count);
    // As the compound file says.
    std::uint64_t document_size();
    // What of it can be read: the bound of all that is read, allocated and counted on its word.
    std::uint64_t readable_size();

    PersistDirectory& persist_directory();
    bool has_user_edit() const { return current_user_edit_.has_value(); }
    // The newest user edit; throws 8140 when there is none.
    UserEdit& current_user_edit();
    CurrentUser& current_user() { return current_user_; }
    // All user edits as they were read, newest first.
    const std::vector<StoredUserEdit>& user_edits() const { return user_edits_; }

    // Filled by the link walk.
    std::array<std::int32_t, 3> slide_list_indexes{}; // by list instance: last running index
    std::uint32_t tag_slide_persist_id = 0;
    std::vector<Page> pages; // index: running slide index
    // Offsets of what was left out. An offset that is named as a storage may be that of a good
    // page.
    std::unordered_set<std::uint32_t> unread_pages;
    std::unordered_set<std::uint32_t> unread_storages;

  private:
    void read_current_user();
    void read_user_edit(std::uint32_t offset, UserEdit& edit);
    void read_persist_block(std::uint32_t offset);
    IStream* stream_or_throw();

    ComPtr<IStorage> root_;
    ComPtr<IStream> document_;
    std::optional<std::uint64_t> document_size_; // of a stream that nobody writes
    std::optional<std::uint64_t> readable_size_; // before anybody wrote it
    CurrentUser current_user_;
    bool current_user_valid_ = false;
    std::optional<UserEdit> current_user_edit_;
    std::unique_ptr<PersistDirectory> persist_directory_;
    std::vector<StoredUserEdit> user_edits_;
    std::uint64_t persist_bytes_read_ = 0;
};

} // namespace ppt
