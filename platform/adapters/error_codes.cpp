// The translation of errors into HRESULTs. What callers build on these results decides a few rows:
// a file in use must come out as a share violation (a lock violation reads as missing permission),
// a read-only medium or a folder as denied access, and a file of another format as Windows reports
// it, a name that is already taken.
#include "platform/adapters/error_codes.h"

#include <new>

namespace platform {

HRESULT result_of(Errc code) {
    switch (code) {
    case Errc::not_found:
        return STG_E_FILENOTFOUND;
    case Errc::path_not_found:
        return STG_E_PATHNOTFOUND;
    case Errc::exists:
    case Errc::not_compound_file:
        return STG_E_FILEALREADYEXISTS;
    case Errc::access:
    case Errc::write_protected:
    case Errc::is_directory:
        return STG_E_ACCESSDENIED;
    case Errc::sharing:
        return STG_E_SHAREVIOLATION;
    case Errc::too_many_files:
        return STG_E_TOOMANYOPENFILES;
    case Errc::corrupt:
        return STG_E_DOCFILECORRUPT;
    case Errc::read_fault:
        return STG_E_READFAULT;
    case Errc::write_fault:
        return STG_E_WRITEFAULT;
    case Errc::medium_full:
        return STG_E_MEDIUMFULL;
    case Errc::too_large:
        return STG_E_DOCFILETOOLARGE;
    case Errc::invalid_name:
        return STG_E_INVALIDNAME;
    case Errc::invalid_argument:
        return STG_E_INVALIDPARAMETER;
    case Errc::unsupported:
        return kNotSupported;
    case Errc::no_memory:
        return STG_E_INSUFFICIENTMEMORY;
    }
    return E_UNEXPECTED;
}

HRESULT result_of_current_exception() noexcept {
    try {
        throw;
    } catch (const Error& error) {
        return result_of(error.code());
    } catch (const std::bad_alloc&) {
        return STG_E_INSUFFICIENTMEMORY;
    } catch (...) {
        return E_UNEXPECTED;
    }
}

} // namespace platform
