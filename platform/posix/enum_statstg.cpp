// IEnumSTATSTG over a snapshot that all clones share; each has its own position.
#include "platform/posix/enum_statstg.h"

#include "platform/adapters/com_object.h"
#include "platform/adapters/error_codes.h"
#include "platform/adapters/statstg.h"
#include "platform/posix/property_storage.h"

#include <memory>

namespace platform {

namespace {

using Elements = std::shared_ptr<const std::vector<compound_file::EntryInfo>>;

class EnumStatstg final : public ComObject<IEnumSTATSTG> {
  public:
    EnumStatstg(Elements elements, std::size_t position)
        : elements_(std::move(elements))
        , position_(position) {}

    HRESULT QueryInterface(REFIID iid, void** object) override {
        return answer(iid, object, {IID_IEnumSTATSTG});
    }

    HRESULT Next(ULONG count, STATSTG* out, ULONG* fetched) override {
        if (out == nullptr || (fetched == nullptr && count != 1)) {
            return STG_E_INVALIDPOINTER;
        }
        ULONG done = 0;
        const HRESULT result = guarded([&] {
            for (; done < count && position_ + done < elements_->size(); ++done) {
                const compound_file::EntryInfo& element = (*elements_)[position_ + done];
                out[done] = describe(element, element.name, 0, STATFLAG_DEFAULT);
            }
            return done == count ? S_OK : S_FALSE;
        });
        if (FAILED(result)) {
            for (; done > 0; --done) {
                CoTaskMemFree(out[done - 1].pwcsName);
                out[done - 1].pwcsName = nullptr;
            }
        }
        position_ += done;
        if (fetched != nullptr) {
            *fetched = done;
        }
        return result;
    }

    HRESULT Skip(ULONG count) override {
        const std::size_t skipped = std::min<std::size_t>(count, elements_->size() - position_);
        position_ += skipped;
        return skipped == count ? S_OK : S_FALSE;
    }

    HRESULT Reset() override {
        position_ = 0;
        return S_OK;
    }

    HRESULT Clone(IEnumSTATSTG** clone) override {
        if (clone == nullptr) {
            return STG_E_INVALIDPOINTER;
        }
        *clone = nullptr;
        return guarded([&] {
            *clone = new EnumStatstg(elements_, position_);
            return S_OK;
        });
    }

  private:
    Elements elements_;
    std::size_t position_;
};

} // namespace

IEnumSTATSTG* make_enum_statstg(std::vector<compound_file::EntryInfo> elements) {
    return new EnumStatstg(
        std::make_shared<const std::vector<compound_file::EntryInfo>>(std::move(elements)), 0);
}

} // namespace platform
