// Random sequences of operations against a model of plain byte vectors. A failing sequence is
// shortened before it is reported.
#include "tests/compound_file/builders.h"

#include <random>
#include <sstream>

namespace compound_file::test {
namespace {

struct Operation {
    enum class Kind { create, write, resize, copy, erase, rename, flush, reopen };
    Kind kind;
    std::uint32_t name;
    std::uint32_t other;
    std::uint64_t offset;
    std::uint64_t count;
};

constexpr const char* kKindNames[] = {"create", "write",  "resize", "copy",
                                      "erase",  "rename", "flush",  "reopen"};

std::string text_of(const std::vector<Operation>& operations) {
    std::ostringstream out;
    for (const Operation& op : operations) {
        out << kKindNames[static_cast<int>(op.kind)] << ' ' << op.name << ' ' << op.other << ' '
            << op.offset << ' ' << op.count << '\n';
    }
    return out.str();
}

std::uint64_t random_size(std::mt19937& random) {
    constexpr std::uint64_t kBoundaries[] = {0, 64, 512, 4096, 8192, 65536};
    const std::uint64_t near = kBoundaries[random() % std::size(kBoundaries)];
    const std::uint64_t jitter = random() % 5;
    return random() % 3 == 0 ? random() % 30000 : near + jitter - std::min<std::uint64_t>(near, 2);
}

std::vector<Operation> random_operations(std::uint32_t seed, std::size_t count) {
    std::mt19937 random(seed);
    std::vector<Operation> out;
    for (std::size_t i = 0; i < count; ++i) {
        constexpr Operation::Kind kWeighted[] = {
            Operation::Kind::create, Operation::Kind::create, Operation::Kind::write,
            Operation::Kind::write,  Operation::Kind::write,  Operation::Kind::resize,
            Operation::Kind::resize, Operation::Kind::copy,   Operation::Kind::copy,
            Operation::Kind::erase,  Operation::Kind::rename, Operation::Kind::flush,
            Operation::Kind::reopen};
        const std::uint64_t offset = random_size(random) / 2;
        out.push_back({kWeighted[random() % std::size(kWeighted)],
                       static_cast<std::uint32_t>(random() % 12),
                       static_cast<std::uint32_t>(random() % 12), offset, random_size(random)});
    }
    return out;
}

// One run: the file and what it should hold.
class Playback {
  public:
    explicit Playback(Version version) {
        medium_->put(0, bytes::Bytes(3001, 0xCD));
        file_ = create_on(medium_, version);
    }

    // Empty when all went well.
    std::string play(const std::vector<Operation>& operations) {
        try {
            for (const Operation& op : operations) {
                play(op);
            }
            reopen();
        } catch (const std::exception& error) {
            failure_ += std::string("thrown: ") + error.what() + "\n";
        }
        return failure_;
    }

  private:
    static std::u16string name_of(std::uint32_t number) {
        return std::u16string(number % 4 + 1, static_cast<char16_t>(u'a' + number));
    }

    void play(const Operation& op) {
        using Kind = Operation::Kind;
        const auto known = model_.find(op.name);
        const auto other = model_.find(op.other);
        if (op.kind == Kind::create && known == model_.end()) {
            file_->create_stream(kRoot, name_of(op.name));
            model_[op.name] = {};
        } else if (op.kind == Kind::flush) {
            file_->flush();
        } else if (op.kind == Kind::reopen) {
            reopen();
        } else if (known == model_.end()) {
            return;
        } else if (op.kind == Kind::erase) {
            file_->erase(entry(op.name));
            model_.erase(known);
        } else if (op.kind == Kind::rename && other == model_.end()) {
            file_->rename(entry(op.name), name_of(op.other));
            auto node = model_.extract(known);
            node.key() = op.other;
            model_.insert(std::move(node));
        } else {
            change_bytes(op, known->second);
        }
    }

    void change_bytes(const Operation& op, bytes::Bytes& expected) {
        const auto stream = file_->stream(entry(op.name));
        if (op.kind == Operation::Kind::write) {
            const bytes::Bytes data = pattern(op.count, ++writes_);
            stream->write_at(op.offset, data);
            put(expected, op.offset, data);
        } else if (op.kind == Operation::Kind::resize) {
            stream->resize(op.count);
            expected.resize(op.count);
        } else if (op.kind == Operation::Kind::copy && model_.contains(op.other)) {
            const bytes::Bytes& source = model_[op.other];
            const std::size_t from = std::min<std::size_t>(source.size(), op.offset / 2);
            const std::size_t count = std::min<std::size_t>(source.size() - from, op.count);
            const bytes::Bytes data(source.begin() + static_cast<std::ptrdiff_t>(from),
                                    source.begin() + static_cast<std::ptrdiff_t>(from + count));
            const std::uint64_t copied =
                stream->copy_range(*file_->stream(entry(op.other)), from, op.offset, op.count);
            require(copied == count, "copied another number of bytes");
            put(expected, op.offset, data);
        }
    }

    static void put(bytes::Bytes& target, std::size_t offset, const bytes::Bytes& data) {
        if (!data.empty()) {
            target.resize(std::max(target.size(), offset + data.size()));
            std::copy(data.begin(), data.end(),
                      target.begin() + static_cast<std::ptrdiff_t>(offset));
        }
    }

    EntryId entry(std::uint32_t name) { return file_->find(kRoot, name_of(name)); }

    void require(bool holds, const std::string& what) { failure_ += holds ? "" : what + "\n"; }

    void reopen() {
        compare(); // what the open file says
        file_->flush();
        file_.reset();
        failure_ += faults_of(medium_);
        file_ = open_on(medium_, Access::read_write);
        compare(); // what reached the medium
    }

    void compare() {
        require(file_->children(kRoot).size() == model_.size(), "another number of entries");
        for (const auto& [name, expected] : model_) {
            require(content(*file_, entry(name)) == expected,
                    "other content in stream " + std::to_string(name));
        }
    }

    std::shared_ptr<Medium> medium_ = std::make_shared<Medium>();
    std::unique_ptr<CompoundFile> file_;
    std::map<std::uint32_t, bytes::Bytes> model_;
    std::uint32_t writes_ = 0;
    std::string failure_;
};

std::vector<Operation> shortened(std::vector<Operation> operations, Version version) {
    for (std::size_t chunk = operations.size() / 2; chunk > 0; chunk /= 2) {
        for (std::size_t at = 0; at + chunk <= operations.size();) {
            std::vector<Operation> fewer = operations;
            fewer.erase(fewer.begin() + static_cast<std::ptrdiff_t>(at),
                        fewer.begin() + static_cast<std::ptrdiff_t>(at + chunk));
            if (Playback(version).play(fewer).empty()) {
                at += chunk;
            } else {
                operations = std::move(fewer);
            }
        }
    }
    return operations;
}

TEST(RandomOperations, AgreeWithByteVectors) {
    for (std::uint32_t seed = 1; seed <= 25; ++seed) {
        for (const Version version : {Version::v3, Version::v4}) {
            const std::vector<Operation> operations = random_operations(seed, 100);
            if (Playback(version).play(operations).empty()) {
                continue;
            }
            const std::vector<Operation> few = shortened(operations, version);
            FAIL() << "seed " << seed << ", version " << static_cast<int>(version) << ":\n"
                   << Playback(version).play(few) << text_of(few);
        }
    }
}

} // namespace
} // namespace compound_file::test
