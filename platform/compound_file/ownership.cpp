// One owner per sector in an array beside the table.
#include "platform/compound_file/ownership.h"

namespace compound_file {
namespace {

constexpr EntryId kNobody = kNoEntry;
constexpr EntryId kMetadata = kNoEntry - 1;

class Claims {
  public:
    Claims(ChainTable& table, std::unordered_set<EntryId>& crossed)
        : table_(table)
        , crossed_(crossed)
        , owners_(table.size(), kNobody)
        , shared_(table.size()) {}

    void claim_marked(Sector sector, Sector mark) {
        claim_metadata(sector);
        table_.take_out(sector, mark);
    }

    void claim_chained(Sector sector) {
        claim_metadata(sector);
        table_.end_if_broken(sector);
    }

    void claim_metadata_chain(Sector first, std::uint64_t limit) {
        const std::uint32_t length = table_.chain_length(first, limit);
        Sector at = first;
        for (std::uint32_t i = 0; i < length; ++i) {
            claim_chained(at);
            at = table_.next(at);
        }
    }

    // The sectors that the size needs. From the first sector with another owner on, the walk goes
    // to the chain's very end, so that each sector is walked at most twice: later walkers that meet
    // the shared part know that all behind it has been seen.
    void claim_chain(EntryId owner, Sector first, std::uint64_t count) {
        bool crossing = false;
        Sector at = first;
        for (std::uint64_t i = 0; (crossing || i < count) && table_.holds(at); ++i) {
            if (owners_[at] == kMetadata) {
                fail(at);
            }
            if (owners_[at] == kNobody) {
                owners_[at] = owner;
            } else {
                crossed_.insert(owner);
                crossed_.insert(owners_[at]);
                crossing = true;
            }
            if (crossing) {
                if (shared_.contains(at)) {
                    return;
                }
                shared_.insert(at);
            }
            table_.end_if_broken(at);
            at = table_.next(at);
        }
    }

  private:
    void claim_metadata(Sector sector) {
        if (sector >= owners_.size() || owners_[sector] != kNobody) {
            fail(sector);
        }
        owners_[sector] = kMetadata;
    }

    [[noreturn]] static void fail(Sector sector) {
        throw platform::Error(platform::Errc::corrupt,
                              "sector " + std::to_string(sector) +
                                  " is metadata and belongs to something else too");
    }

    ChainTable& table_;
    std::unordered_set<EntryId>& crossed_;
    std::vector<EntryId> owners_;
    SectorSet shared_;
};

} // namespace

std::unordered_set<EntryId> claim_sectors(SectorTable& sectors, MiniTable& minis,
                                          Directory& directory) {
    std::unordered_set<EntryId> crossed;
    Claims claims(sectors, crossed);
    for (const Sector sector : sectors.fat_sectors()) {
        claims.claim_marked(sector, kFatSector);
    }
    for (const Sector sector : sectors.difat_sectors()) {
        claims.claim_marked(sector, kDifatSector);
    }
    for (const Sector sector : directory.places()) {
        claims.claim_chained(sector);
    }
    for (const Sector sector : minis.places()) {
        claims.claim_chained(sector);
    }
    claims.claim_metadata_chain(minis.first_sector(), minis.room() / sectors.sector_bytes());

    Claims mini_claims(minis, crossed);
    for (EntryId id = 1; id < directory.size(); ++id) {
        const Entry& entry = directory.at(id);
        if (entry.type != EntryType::stream || !directory.exists(id) || entry.size == 0) {
            continue;
        }
        const bool small = entry.size < kMiniCutoff;
        const ChainTable& table = small ? static_cast<const ChainTable&>(minis) : sectors;
        if (!table.holds(entry.first)) {
            directory.set_stream(id, kEndOfChain, entry.size);
        } else if (small) {
            mini_claims.claim_chain(id, entry.first, (entry.size + kMiniBytes - 1) / kMiniBytes);
        } else {
            claims.claim_chain(id, entry.first, sectors.sectors_for(entry.size));
        }
    }
    return crossed;
}

} // namespace compound_file
