// Display names of files, with items behind them or without, as monikers.
#include "platform/adapters/display_name.h"
#include "platform/adapters/statstg.h"
#include "platform/platform.h"

#include <new>
#include <string>

namespace platform {

namespace {

bool exists(std::u16string_view path) {
    return attributes_of(path) != INVALID_FILE_ATTRIBUTES;
}

bool items_are_named(std::u16string_view items) {
    // `items` is empty or begins with its first '!'.
    return items.find(u"!!") == std::u16string_view::npos &&
           (items.empty() || items.back() != u'!');
}

HRESULT parse(std::u16string_view name) {
    std::size_t length = name.size();
    while (!exists(name.substr(0, length))) {
        const std::size_t delimiter =
            length == 0 ? std::u16string_view::npos : name.rfind(u'!', length - 1);
        if (delimiter == std::u16string_view::npos) {
            return MK_E_CANTOPENFILE;
        }
        length = delimiter;
    }
    return items_are_named(name.substr(length)) ? S_OK : MK_E_SYNTAX;
}

} // namespace

} // namespace platform

HRESULT STDAPICALLTYPE MkParseDisplayName(IBindCtx* context, const WCHAR* name, ULONG* eaten,
                                          IMoniker** moniker) {
    if (context == nullptr || name == nullptr || *name == 0 || eaten == nullptr ||
        moniker == nullptr) {
        return E_INVALIDARG;
    }
    *eaten = 0;
    *moniker = nullptr;
    try {
        const std::u16string whole = platform::units_of(name);
        const HRESULT result = platform::parse(whole);
        if (result != S_OK) {
            return result;
        }
        *eaten = static_cast<ULONG>(whole.size());
        return CreateFileMoniker(name, moniker);
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    }
}
