// What the COM objects of one open compound file share: the engine, the path, and who has what
// open.
//
// Ownership: every storage and stream object holds its OpenElement, clones of a stream the same
// one; an element holds its parent element and the OpenCompoundFile, so the engine lives until the
// last object of the file is gone. An element is reverted when the storage it was opened from is
// released or when its entry is erased; from then on its objects answer STG_E_REVERTED and never
// touch the engine, and its entry may be opened again.
#pragma once

#include "platform/compound_file/compound_file.h"

#include <memory>
#include <string>
#include <unordered_map>

namespace platform {

class OpenElement;

class OpenCompoundFile {
  public:
    // `path` is the full path as the documents write it; empty for a file in a byte array.
    OpenCompoundFile(std::unique_ptr<compound_file::CompoundFile> engine, std::u16string path)
        : engine_(std::move(engine))
        , path_(std::move(path)) {}

    compound_file::CompoundFile& engine() const { return *engine_; }
    const std::u16string& path() const { return path_; }

    // Whether an object that was not reverted has the entry open.
    bool is_open(compound_file::EntryId entry) const;

    // Records the element as the one that has its entry open, until it is destroyed.
    void claim(OpenElement& element);
    void withdraw(const OpenElement& element) noexcept;

    // Reverts the element that has the entry open, if there is one.
    void revert(compound_file::EntryId entry);

  private:
    std::unique_ptr<compound_file::CompoundFile> engine_;
    std::u16string path_;
    std::unordered_map<compound_file::EntryId, OpenElement*> open_;
};

class OpenElement {
  public:
    // `parent` is null for the root.
    OpenElement(std::shared_ptr<OpenCompoundFile> file, std::shared_ptr<OpenElement> parent,
                compound_file::EntryId entry)
        : file_(std::move(file))
        , parent_(std::move(parent))
        , entry_(entry) {}
    OpenElement(const OpenElement&) = delete;
    OpenElement& operator=(const OpenElement&) = delete;
    ~OpenElement() { file_->withdraw(*this); }

    const std::shared_ptr<OpenCompoundFile>& file() const { return file_; }
    compound_file::CompoundFile& engine() const { return file_->engine(); }
    compound_file::EntryId entry() const { return entry_; }

    void revert() { reverted_ = true; }

    // Whether this element or one that it was opened through was reverted. Cost: the depth.
    bool is_reverted() const;

    // Whether this element is `entry` or was opened through it.
    bool is_inside(compound_file::EntryId entry) const;

  private:
    std::shared_ptr<OpenCompoundFile> file_;
    std::shared_ptr<OpenElement> parent_;
    compound_file::EntryId entry_;
    bool reverted_ = false;
};

} // namespace platform
