// The checker: loads the tables as an opening does, then compares everything with everything.
#include "platform/compound_file/check.h"

#include "platform/compound_file/directory_entry.h"
#include "platform/compound_file/mini_table.h"
#include "platform/compound_file/sector_io.h"
#include "platform/compound_file/sibling_tree.h"

#include <algorithm>

namespace compound_file {
namespace {

// Owners of sectors besides entries.
constexpr EntryId kNobody = kNoEntry;
constexpr EntryId kFat = kNoEntry - 1;
constexpr EntryId kDifat = kNoEntry - 2;
constexpr EntryId kDirectory = kNoEntry - 3;
constexpr EntryId kMiniFat = kNoEntry - 4;

std::string name_of(EntryId owner) {
    switch (owner) {
    case kFat:
        return "the FAT";
    case kDifat:
        return "the DIFAT";
    case kDirectory:
        return "the directory";
    case kMiniFat:
        return "the mini FAT";
    case kRoot:
        return "the mini stream";
    default:
        return "stream " + std::to_string(owner);
    }
}

class Check {
  public:
    Check(Backing& backing, bool strict, const Header& header)
        : backing_(backing)
        , strict_(strict)
        , header_(header)
        , geometry_(header.geometry)
        , sectors_(geometry_)
        , minis_(geometry_) {}

    std::vector<std::string> run() {
        check_cutoff();
        sectors_.load(backing_, header_);
        owners_.assign(sectors_.size(), kNobody);
        check_listed(sectors_.fat_sectors(), kFat, kFatSector);
        check_listed(sectors_.difat_sectors(), kDifat, kDifatSector);
        const std::vector<Sector> directory = metadata_chain(kDirectory, header_.first_directory);
        if (directory.empty()) {
            problem("there is no directory");
            return std::move(problems_);
        }
        load_entries(directory);
        const Entry& root = entries_[kRoot];
        minis_.load(backing_, sectors_, header_, root.first, root.size);
        mini_owners_.assign(minis_.size(), kNobody);
        const std::vector<Sector> mini_fat = metadata_chain(
            kMiniFat, header_.mini_fat_sectors > 0 ? header_.first_mini_fat : kEndOfChain);
        check_counts(directory.size(), mini_fat.size());
        check_chain(kRoot, sectors_, owners_, root.first, geometry_.sectors_for(root.size));
        if (root.size % kMiniBytes != 0) {
            problem("the mini stream has " + std::to_string(root.size) +
                    " bytes, no multiple of 64");
        }
        check_trees();
        check_entries();
        check_unowned(sectors_, owners_, "sector ");
        check_unowned(minis_, mini_owners_, "mini sector ");
        check_lock_sector();
        return std::move(problems_);
    }

  private:
    void problem(const std::string& sentence) { problems_.push_back(sentence); }
    void strict_problem(bool broken, const std::string& sentence) {
        if (strict_ && broken) {
            problem(sentence);
        }
    }

    // False when somebody owns the sector already.
    bool claim(std::vector<EntryId>& owners, Sector sector, EntryId owner) {
        if (owners[sector] != kNobody) {
            problem("sector " + std::to_string(sector) + " belongs to " + name_of(owners[sector]) +
                    " and to " + name_of(owner));
            return false;
        }
        owners[sector] = owner;
        return true;
    }

    void check_listed(const std::vector<Sector>& listed, EntryId owner, Sector mark) {
        for (const Sector sector : listed) {
            if (sector >= sectors_.size()) {
                problem("sector " + std::to_string(sector) + " of " + name_of(owner) +
                        " lies outside the FAT");
                continue;
            }
            claim(owners_, sector, owner);
            if (sectors_.next(sector) != mark) {
                problem("sector " + std::to_string(sector) + " of " + name_of(owner) +
                        " lacks its mark");
            }
        }
    }

    std::vector<Sector> metadata_chain(EntryId owner, Sector first) {
        std::vector<Sector> chain;
        Sector at = first;
        for (; sectors_.holds(at) && claim(owners_, at, owner); at = sectors_.next(at)) {
            chain.push_back(at);
        }
        strict_problem(at != kEndOfChain, "the chain of " + name_of(owner) + " ends with " +
                                              std::to_string(at) + ", no end mark");
        return chain;
    }

    void load_entries(const std::vector<Sector>& directory) {
        raw_.resize(directory.size() << geometry_.shift());
        read_sectors(backing_, geometry_, directory, raw_);
        for (std::size_t at = 0; at < raw_.size(); at += kEntryBytes) {
            entries_.push_back(decode_entry(raw(at / kEntryBytes), geometry_.version));
        }
        if (entries_[kRoot].type != EntryType::root) {
            problem("entry 0 is not marked as the root");
            entries_[kRoot].type = EntryType::root;
        }
        reached_.grow(static_cast<std::uint32_t>(entries_.size()));
    }

    bytes::View raw(std::size_t id) const {
        return bytes::View(raw_).subspan(id * kEntryBytes, kEntryBytes);
    }

    void check_counts(std::size_t directory, std::size_t mini_fat) {
        const auto compare = [&](std::uint64_t found, std::uint64_t counted, const char* what) {
            strict_problem(found != counted, std::string("the header says ") + what + " " +
                                                 std::to_string(found) + ", there are " +
                                                 std::to_string(counted));
        };
        compare(header_.fat_sectors, sectors_.fat_sectors().size(), "FAT sectors");
        compare(header_.difat_sectors, sectors_.difat_sectors().size(), "DIFAT sectors");
        compare(header_.mini_fat_sectors, mini_fat, "mini FAT sectors");
        compare(header_.directory_sectors, geometry_.version == Version::v4 ? directory : 0,
                "directory sectors");
    }

    // Claims what the size needs; stops at the first sector that somebody else has.
    void check_chain(EntryId owner, const ChainTable& table, std::vector<EntryId>& owners,
                     Sector first, std::uint64_t needed) {
        Sector at = first;
        std::uint64_t length = 0;
        for (; length < needed && table.holds(at); ++length, at = table.next(at)) {
            if (!claim(owners, at, owner)) {
                return;
            }
        }
        if (length < needed) {
            problem(name_of(owner) + " has " + std::to_string(length) +
                    " sectors, its size needs " + std::to_string(needed));
        } else if (at == kFreeSector && needed > 0) {
            problem("the last sector of " + name_of(owner) + " is marked free");
        }
        strict_problem(length == needed && at != kEndOfChain && needed > 0,
                       name_of(owner) + " has more sectors than its size needs");
    }

    void check_trees() {
        reached_.insert(kRoot);
        std::vector<EntryId> storages = {kRoot};
        while (!storages.empty()) {
            const EntryId storage = storages.back();
            storages.pop_back();
            walk_siblings(
                entries_, storage, reached_,
                [&](EntryId id, EntryId) {
                    if (entries_[id].type == EntryType::storage) {
                        storages.push_back(id);
                    }
                },
                [&](TreeFault kind, const std::string& fault) {
                    if (strict_ || kind == TreeFault::links) {
                        problem(fault);
                    }
                });
        }
    }

    void check_entries() {
        for (EntryId id = 0; id < entries_.size(); ++id) {
            const Entry& entry = entries_[id];
            if (entry.type == EntryType::free) {
                check_free_entry(id);
                continue;
            }
            if (!reached_.contains(id)) {
                strict_problem(true, "nothing leads to entry " + std::to_string(id));
                continue;
            }
            const bool high_half = bytes::load_u32(raw(id), kAtFirstSector + 8) != 0;
            strict_problem(geometry_.version == Version::v3 && high_half,
                           "the upper half of the size of entry " + std::to_string(id) +
                               " is not zero");
            if (entry.type == EntryType::stream) {
                check_stream(id, entry);
            }
        }
    }

    void check_free_entry(EntryId id) {
        std::array<std::uint8_t, kEntryBytes> expected{};
        encode_free_entry(expected);
        const bytes::View found = raw(id);
        strict_problem(!std::equal(found.begin(), found.end(), expected.begin()),
                       "entry " + std::to_string(id) + " is free but not empty");
    }

    void check_stream(EntryId id, const Entry& entry) {
        if (entry.child != kNoEntry) {
            problem(name_of(id) + " has a child");
        }
        if (entry.size == 0) {
            strict_problem(entry.first != kEndOfChain, name_of(id) + " is empty but has a sector");
        } else if (entry.size < kMiniCutoff) {
            check_chain(id, minis_, mini_owners_, entry.first,
                        (entry.size + kMiniBytes - 1) / kMiniBytes);
        } else {
            check_chain(id, sectors_, owners_, entry.first, geometry_.sectors_for(entry.size));
        }
    }

    void check_unowned(const ChainTable& table, const std::vector<EntryId>& owners,
                       const char* what) {
        if (!strict_) {
            return;
        }
        const Sector lock = geometry_.version == Version::v4 ? kLockSector : kFreeSector;
        for (Sector sector = 0; sector < table.size(); ++sector) {
            const bool is_lock = &owners == &owners_ && sector == lock;
            if (owners[sector] == kNobody && table.next(sector) != kFreeSector && !is_lock) {
                problem(what + std::to_string(sector) + " is not free and nobody owns it");
            }
        }
    }

    void check_cutoff() {
        try {
            header_.require_writable();
        } catch (const platform::Error& error) {
            problem(error.what());
        }
    }

    void check_lock_sector() {
        if (geometry_.version == Version::v3 || !sectors_.holds(kLockSector)) {
            return;
        }
        if (owners_[kLockSector] != kNobody || sectors_.next(kLockSector) != kEndOfChain) {
            problem("the sector of the range locks, " + std::to_string(kLockSector) +
                    ", is not set aside");
        }
    }

    Backing& backing_;
    bool strict_;
    Header header_;
    Geometry geometry_;
    SectorTable sectors_;
    MiniTable minis_;
    std::vector<EntryId> owners_;
    std::vector<EntryId> mini_owners_;
    bytes::Bytes raw_;
    std::vector<Entry> entries_;
    SectorSet reached_;
    std::vector<std::string> problems_;
};

} // namespace

std::vector<std::string> check_image(Backing& backing, bool strict) {
    try {
        return Check(backing, strict, read_header(backing)).run();
    } catch (const platform::Error& error) {
        return {error.what()};
    }
}

} // namespace compound_file
