// A written presentation as the engines see it: its streams, and whether the file is whole.
#pragma once

#include "platform/base/bytes.h"
#include "platform/compound_file/compound_file.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

namespace plugin_test {

class StoredFile {
  public:
    explicit StoredFile(const std::string& path)
        : file_(compound_file::CompoundFile::open(
              compound_file::open_file(path, compound_file::Access::read),
              compound_file::Access::read)) {
        EXPECT_EQ(file_->check(false), std::vector<std::string>()) << path;
        read_storage(compound_file::kRoot, u"");
    }

    // All streams by their path, storages separated by '/'.
    const std::map<std::u16string, bytes::Bytes>& streams() const { return streams_; }

    const bytes::Bytes& stream(const std::u16string& name) const { return streams_.at(name); }
    const bytes::Bytes& document() const { return stream(u"PowerPoint Document"); }

  private:
    void read_storage(compound_file::EntryId storage, const std::u16string& prefix) {
        for (const compound_file::EntryId entry : file_->children(storage)) {
            const compound_file::EntryInfo info = file_->info(entry);
            if (info.type == compound_file::EntryType::storage) {
                read_storage(entry, prefix + info.name + u"/");
                continue;
            }
            bytes::Bytes data(static_cast<std::size_t>(info.size));
            EXPECT_EQ(file_->stream(entry)->read_at(0, data), data.size());
            streams_[prefix + info.name] = std::move(data);
        }
    }

    std::unique_ptr<compound_file::CompoundFile> file_;
    std::map<std::u16string, bytes::Bytes> streams_;
};

} // namespace plugin_test
