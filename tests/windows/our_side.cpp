// Our compound file engine as a Side. The file is held in memory and put on disk by `save`.
#include "tests/compound_file/test_backing.h"
#include "tests/windows/storage_sides.h"

#include "platform/compound_file/compound_file.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>

namespace storage_sides {
namespace {

namespace fs = std::filesystem;
using compound_file::CompoundFile;
using compound_file::EntryId;
using compound_file::EntryType;
using compound_file::test::Medium;
using compound_file::test::TestBacking;

bytes::Bytes read_file(const fs::path& file) {
    std::ifstream input(file, std::ios::binary);
    return bytes::Bytes{std::istreambuf_iterator<char>(input), {}};
}

std::shared_ptr<Medium> medium_of(const fs::path& file) {
    auto medium = std::make_shared<Medium>();
    medium->put(0, read_file(file));
    return medium;
}

class OurSide final : public Side {
  public:
    OurSide(const fs::path& file, bool create)
        : path_(file) {
        if (create) {
            medium_ = std::make_shared<Medium>();
            file_ = CompoundFile::create(std::make_unique<TestBacking>(medium_),
                                         compound_file::Version::v3);
        } else {
            medium_ = medium_of(file);
            file_ = CompoundFile::open(std::make_unique<TestBacking>(medium_),
                                       compound_file::Access::read_write);
        }
    }

    void add_storage(std::u16string_view path) override {
        const SplitPath parts = split(path);
        file_->create_storage(entry(parts.storage), parts.name);
    }

    void add_stream(std::u16string_view path) override {
        const SplitPath parts = split(path);
        file_->create_stream(entry(parts.storage), parts.name);
    }

    void write_at(std::u16string_view path, std::uint32_t offset, bytes::View data) override {
        file_->stream(entry(path))->write_at(offset, data);
    }

    void resize(std::u16string_view path, std::uint32_t size) override {
        file_->stream(entry(path))->resize(size);
    }

    void erase(std::u16string_view path) override { file_->erase(entry(path)); }

    void rename(std::u16string_view path, std::u16string_view new_name) override {
        file_->rename(entry(path), new_name);
    }

    bool has(std::u16string_view path) override { return find(path) != compound_file::kNoEntry; }

    std::vector<Element> elements() override {
        std::vector<Element> out;
        collect(compound_file::kRoot, u"", out);
        return out;
    }

    void save() override {
        file_->flush();
        bytes::Bytes image(static_cast<std::size_t>(medium_->size));
        medium_->get(0, image);
        std::ofstream output(path_, std::ios::binary);
        output.write(reinterpret_cast<const char*>(image.data()),
                     static_cast<std::streamsize>(image.size()));
        output.close();
        if (!output) {
            std::fprintf(stderr, "the file could not be written\n");
            std::abort();
        }
    }

  private:
    EntryId find(std::u16string_view path) {
        if (path.empty()) {
            return compound_file::kRoot;
        }
        const SplitPath parts = split(path);
        return file_->find(entry(parts.storage), parts.name);
    }

    EntryId entry(std::u16string_view path) {
        const EntryId found = find(path);
        if (found == compound_file::kNoEntry) {
            std::fprintf(stderr, "our engine does not find an element of %zu units\n", path.size());
            std::abort();
        }
        return found;
    }

    void collect(EntryId storage, const std::u16string& prefix, std::vector<Element>& out) {
        for (const EntryId id : file_->children(storage)) {
            const compound_file::EntryInfo info = file_->info(id);
            Element element{prefix + info.name, info.type == EntryType::storage, {}};
            if (element.is_storage) {
                out.push_back(element);
                collect(id, element.path + u"/", out);
                continue;
            }
            const auto stream = file_->stream(id);
            element.content.resize(static_cast<std::size_t>(stream->size()));
            element.content.resize(stream->read_at(0, element.content));
            out.push_back(std::move(element));
        }
    }

    fs::path path_;
    std::shared_ptr<Medium> medium_;
    std::unique_ptr<CompoundFile> file_;
};

} // namespace

std::unique_ptr<Side> make_our_side(const fs::path& file, bool create) {
    return std::make_unique<OurSide>(file, create);
}

std::string faults_of(const fs::path& file) {
    const auto opened = CompoundFile::open(std::make_unique<TestBacking>(medium_of(file)),
                                           compound_file::Access::read);
    std::string lines;
    for (const std::string& fault : opened->check(false)) {
        lines += fault + "\n";
    }
    return lines;
}

} // namespace storage_sides
