#include "plugin/exports.h"

#include "common_new/SafeFunc/paths.h"
#include "common_new/common/conversion.h"
#include "common_new/common/target_access.h"
#include "plugin/checked_allocation.h"
#include "plugin/failure.h"
#include "plugin/sequences.h"
#include "plugin/state.h"
#include "plugin/status.h"
#include "plugin/trace_log.h"

#include <array>
#include <cstring>
#include <new>
#include <utility>

namespace ppt {

namespace {

constexpr std::size_t kLongestOptions = 259;

constexpr std::array<const char*, 3> kMasterFileExtensions = {"*.ppt", "*.pps", ""};
constexpr std::array<const char*, 10> kTargetFileExtensions = {
    "*.ppt", "*.gif", "*.jpg", "*.jpeg", "*.wav", "*.mid", "*.wmf", "*.doc", "*.xls", ""};

LinkRecord* find_link(std::int32_t index) {
    LinkTable& table = state().links;
    LinkRecord* link = table.at(index);
    if (link == nullptr) {
        v_setErrorParamNumbers(index, static_cast<std::int32_t>(table.links().size()));
    }
    return link;
}

std::int32_t copy_text(const std::string& text, char* buffer) {
    if (!b_checkLength(text, static_cast<std::int32_t>(kLinkTextLimit))) {
        return status::kTextTooLong;
    }
    std::memcpy(buffer, text.c_str(), text.size() + 1);
    return status::kSuccess;
}

void copy_extension(const char* extension, char* buffer) {
    std::memcpy(buffer, extension, std::strlen(extension) + 1);
}

// No exception leaves an export.
template <class Call>
std::int32_t guarded(Call call) {
    return status_or(status::kSystemError, call);
}

// Null when there was no memory to make it: nothing was ever loaded then.
PluginState* state_if_made() noexcept {
    try {
        return &state();
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

} // namespace

} // namespace ppt

using namespace ppt;

extern "C" {

std::int32_t PPT_CALL j_initDLL(std::int32_t ceiling, std::int32_t, const char* options) {
    return guarded([&]() -> std::int32_t {
        PluginState& plugin = state();
        if (ceiling > plugin.version_ceiling) {
            plugin.version_ceiling = ceiling;
        }
        if (options != nullptr) {
            plugin.options.assign(options, strnlen(options, kLongestOptions));
        }
        if (CoInitialize(nullptr) == E_OUTOFMEMORY) {
            return status::kOutOfMemory;
        }
        v_openLog();
        return status::kSuccess;
    });
}

std::int32_t PPT_CALL j_termDLL(std::int32_t, std::int32_t) {
    CoUninitialize();
    if (PluginState* plugin = state_if_made()) {
        plugin->options.clear();
    }
    return status::kSuccess;
}

void PPT_CALL v_setNewMode() {
    install_new_handler();
}

std::int32_t PPT_CALL j_loadFile(const char* path, std::int32_t flags) {
    return guarded([&] { return load_file(path, flags); });
}

std::int32_t PPT_CALL j_unLoadFile() {
    if (state_if_made() != nullptr) {
        v_unload();
    }
    return status::kSuccess;
}

std::int32_t PPT_CALL j_rewriteFile(char* path, std::int32_t flags) {
    return guarded([&] { return rewrite_file(path, flags); });
}

std::int32_t PPT_CALL n_getLinkCount() {
    const PluginState* plugin = state_if_made();
    return plugin == nullptr ? 0 : static_cast<std::int32_t>(plugin->links.links().size());
}

std::int32_t PPT_CALL j_getLinkFileName(std::int32_t index, std::int32_t, char* buffer) {
    if (buffer == nullptr) {
        return status::kNullArgument;
    }
    return guarded([&]() -> std::int32_t {
        const LinkRecord* link = find_link(index);
        return link == nullptr ? status::kIndexOutOfRange : copy_text(link->file_name, buffer);
    });
}

std::int32_t PPT_CALL j_setLinkFileName(std::int32_t index, const char* name, std::int32_t) {
    return guarded([&]() -> std::int32_t {
        if (name == nullptr) {
            return status::kNullArgument;
        }
        LinkRecord* link = find_link(index);
        if (link == nullptr) {
            return status::kIndexOutOfRange;
        }
        if (ascii_lower(link->file_name.text()) == ascii_lower(name)) {
            return status::kSuccess;
        }
        if (!b_checkLength(name, static_cast<std::int32_t>(kLinkTextLimit))) {
            link->add_change(kLinkPathChanged);
            return status::kTextTooLong;
        }
        link->file_name = state().links.shared_path(name); // may find no memory
        link->add_change(kLinkPathChanged);
        return status::kSuccess;
    });
}

std::int32_t PPT_CALL j_getLinkId(std::int32_t index, std::int32_t, id64* id) {
    if (id == nullptr) {
        return status::kNullArgument;
    }
    return guarded([&]() -> std::int32_t {
        const LinkRecord* link = find_link(index);
        if (link == nullptr) {
            return status::kIndexOutOfRange;
        }
        v_id64Move(id, &link->link_id);
        return status::kSuccess;
    });
}

std::int32_t PPT_CALL j_setLinkId(std::int32_t index, std::int32_t, const id64* id) {
    if (id == nullptr) {
        return status::kNullArgument;
    }
    return guarded([&]() -> std::int32_t {
        LinkRecord* link = find_link(index);
        if (link == nullptr) {
            return status::kIndexOutOfRange;
        }
        v_id64Move(&link->link_id, id);
        link->add_change(kLinkIdChanged);
        return status::kSuccess;
    });
}

std::int32_t PPT_CALL j_getHyperlinkText(std::int32_t index, char* buffer) {
    if (buffer == nullptr) {
        return status::kNullArgument;
    }
    buffer[0] = '\0';
    return guarded([&]() -> std::int32_t {
        const LinkRecord* link = find_link(index);
        return link == nullptr ? status::kIndexOutOfRange
                               : copy_text(link->hyperlink_text(), buffer);
    });
}

std::int32_t PPT_CALL j_getTargetFileId(std::int32_t, id64* id) {
    if (id == nullptr) {
        return status::kNullArgument;
    }
    return guarded([&] {
        v_id64Move(id, &state().target_file_id);
        return status::kSuccess;
    });
}

std::int32_t PPT_CALL j_setTargetFileId(std::int32_t, const id64* id) {
    if (id == nullptr) {
        return status::kNullArgument;
    }
    return guarded([&] {
        v_id64Move(&state().target_file_id, id);
        state().target_file_id_set = true;
        return status::kSuccess;
    });
}

std::int32_t PPT_CALL j_accessTargetFile(const char* pc_targetFile, const char* pc_masterFile,
                                         char* pc_foundFile, std::int32_t) {
    return guarded([&] { return j_accessTarget(pc_targetFile, pc_masterFile, pc_foundFile); });
}

ErrorParamArray* PPT_CALL ps_getErrorParamArray() {
    return error_param_array();
}

void PPT_CALL v_getStandardMasterFileExtension(std::int32_t index, char* buffer) {
    copy_extension(kMasterFileExtensions[static_cast<std::size_t>(index)], buffer);
}

void PPT_CALL v_getStandardTargetFileExtension(std::int32_t index, char* buffer) {
    copy_extension(kTargetFileExtensions[static_cast<std::size_t>(index)], buffer);
}
}
