#include "common_new/common/target_access.h"

#include "common_new/SafeFunc/split_path.h"
#include "common_new/assert_report.h"
#include "common_new/common/conversion.h"
#include "common_new/common/files.h"
#include "common_new/common/storage.h"
#include "plugin/error_params.h"
#include "plugin/status.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string>

namespace ppt {

namespace {

bool is_given(const void* argument, const char* expression, unsigned line = __builtin_LINE()) {
    if (argument == nullptr) {
        report_assertion(expression, kSourceCommon, line);
    }
    return argument != nullptr;
}

// The drive and directory of the master file; false when they do not fit.
bool master_folder(const char* master, std::string& folder) {
    PathParts parts;
    return b_splitPath(master, kPathCapacity, &parts) &&
           n_makePath(&folder, kPathCapacity, parts.drive, parts.directory, {}, {}) == 0;
}

// The process's current directory, which the drive remembers from then on: the system completes
// "Q:a.doc" by what it finds under the name "=Q:" in the process's environment.
bool make_current(const std::string& folder) {
    if (SetCurrentDirectoryA(folder.c_str()) == FALSE) {
        return false;
    }
    std::array<char, kPathCapacity> current{};
    const DWORD length = GetCurrentDirectoryA(static_cast<DWORD>(current.size()), current.data());
    const bool on_a_drive = length > 1 && length < current.size() && current[1] == ':';
    if (on_a_drive) {
        const char name[] = {'=', current[0], ':', '\0'};
        return SetEnvironmentVariableA(name, current.data()) != FALSE;
    }
    return true;
}

// Looks for a path that names no file as a file with an item behind it; on success the item is cut.
std::int32_t find_without_item(std::string& path) {
    ComPtr<IBindCtx> context;
    const HRESULT created = CreateBindCtx(0, context.put());
    if (FAILED(created)) {
        return j_translateComError(created);
    }
    std::array<WCHAR, kFoundFileSize> wide{};
    const std::int32_t converted = j_ansiToWide(path.c_str(), wide.data(), kFoundFileSize);
    if (converted != status::kSuccess) {
        return converted;
    }
    ULONG eaten = 0;
    ComPtr<IMoniker> moniker;
    const HRESULT parsed = MkParseDisplayName(context.get(), wide.data(), &eaten, moniker.put());
    if (FAILED(parsed)) {
        return parsed == E_OUTOFMEMORY ? status::kSystemOutOfMemory : status::kFileNotFound;
    }
    path.resize(std::min(path.find('!'), path.size()));
    return status::kSuccess;
}

} // namespace

std::int32_t j_accessTarget(const char* pc_targetFile, const char* pc_masterFile,
                            char* pc_foundFile) {
    if (!is_given(pc_targetFile, "pc_targetFile != NULL") ||
        !is_given(pc_masterFile, "pc_masterFile != NULL") ||
        !is_given(pc_foundFile, "pc_foundFile != NULL")) {
        return status::kNullArgument;
    }
    std::string folder;
    if (!master_folder(pc_masterFile, folder)) {
        return status::kSystemError;
    }
    if (!b_checkLength(pc_targetFile, static_cast<std::int32_t>(kPathCapacity))) {
        return status::kTextTooLong;
    }
    if (!make_current(folder)) {
        v_setErrorParamText(folder);
        return status::kPathNotFound;
    }
    std::string path;
    std::int32_t status = j_getFullPath(&path, pc_targetFile, kFoundFileSize);
    if (status != status::kSuccess) {
        return status;
    }
    status = j_checkFileExists(path.c_str());
    if (status == status::kFileNotFound) {
        status = find_without_item(path);
        if (status != status::kSuccess) {
            return status;
        }
    }
    std::array<char, kFoundFileSize> found{};
    std::memcpy(found.data(), path.data(), path.size());
    std::memcpy(pc_foundFile, found.data(), found.size());
    return status;
}

} // namespace ppt
