// The exported functions as a host gets them: bound in ppt.dll by their decorated names, at the
// first call of any. What no exported function tells of a link is read from its record; the
// library's records cannot be seen from here, so this program's own reader reads each presentation
// once more.
#include "plugin/exports.h"

#include "plugin/sequences.h"
#include "plugin/state.h"
#include "plugin/status.h"
#include "pptlinks/failure.h"

namespace {

struct Exports {
    decltype(&::j_accessTargetFile) j_accessTargetFile;
    decltype(&::j_getHyperlinkText) j_getHyperlinkText;
    decltype(&::j_getLinkFileName) j_getLinkFileName;
    decltype(&::j_getLinkId) j_getLinkId;
    decltype(&::j_getTargetFileId) j_getTargetFileId;
    decltype(&::j_initDLL) j_initDLL;
    decltype(&::j_loadFile) j_loadFile;
    decltype(&::j_rewriteFile) j_rewriteFile;
    decltype(&::j_setLinkFileName) j_setLinkFileName;
    decltype(&::j_setLinkId) j_setLinkId;
    decltype(&::j_setTargetFileId) j_setTargetFileId;
    decltype(&::j_termDLL) j_termDLL;
    decltype(&::j_unLoadFile) j_unLoadFile;
    decltype(&::n_getLinkCount) n_getLinkCount;
    decltype(&::ps_getErrorParamArray) ps_getErrorParamArray;
    decltype(&::v_getStandardMasterFileExtension) v_getStandardMasterFileExtension;
    decltype(&::v_getStandardTargetFileExtension) v_getStandardTargetFileExtension;
    decltype(&::v_setNewMode) v_setNewMode;
};

// Looks exports up by name; a library that lacks one is not the plug-in.
class Library {
  public:
    Library()
        : module_(LoadLibraryW(L"ppt.dll")) {
        if (module_ == nullptr) {
            throw pptlinks::FileFailure(
                "ppt.dll", "it or Trellismender.dll cannot be loaded (error " +
                               std::to_string(GetLastError()) + "); put both beside this program");
        }
    }

    template <class Function>
    void bind(Function*& function, const char* name) const {
        const FARPROC address = GetProcAddress(module_, name);
        if (address == nullptr) {
            throw pptlinks::FileFailure("ppt.dll", std::string("it has no function ") + name +
                                                       "; put the right library beside this "
                                                       "program");
        }
        function = reinterpret_cast<Function*>(reinterpret_cast<void*>(address));
    }

  private:
    HMODULE module_; // stays loaded
};

Exports bind_all() {
    const Library library;
    Exports bound{};
    library.bind(bound.j_accessTargetFile, "_j_accessTargetFile@16");
    library.bind(bound.j_getHyperlinkText, "_j_getHyperlinkText@8");
    library.bind(bound.j_getLinkFileName, "_j_getLinkFileName@12");
    library.bind(bound.j_getLinkId, "_j_getLinkId@12");
    library.bind(bound.j_getTargetFileId, "_j_getTargetFileId@8");
    library.bind(bound.j_initDLL, "_j_initDLL@12");
    library.bind(bound.j_loadFile, "_j_loadFile@8");
    library.bind(bound.j_rewriteFile, "_j_rewriteFile@8");
    library.bind(bound.j_setLinkFileName, "_j_setLinkFileName@12");
    library.bind(bound.j_setLinkId, "_j_setLinkId@12");
    library.bind(bound.j_setTargetFileId, "_j_setTargetFileId@8");
    library.bind(bound.j_termDLL, "_j_termDLL@8");
    library.bind(bound.j_unLoadFile, "_j_unLoadFile@0");
    library.bind(bound.n_getLinkCount, "_n_getLinkCount@0");
    library.bind(bound.ps_getErrorParamArray, "_ps_getErrorParamArray@0");
    library.bind(bound.v_getStandardMasterFileExtension, "_v_getStandardMasterFileExtension@8");
    library.bind(bound.v_getStandardTargetFileExtension, "_v_getStandardTargetFileExtension@8");
    library.bind(bound.v_setNewMode, "_v_setNewMode@0");
    return bound;
}

const Exports& exports() {
    static const Exports bound = bind_all();
    return bound;
}

} // namespace

extern "C" {

std::int32_t PPT_CALL j_initDLL(std::int32_t ceiling, std::int32_t reserved, const char* options) {
    ppt::state().version_ceiling = ceiling;
    ppt::state().options = options == nullptr ? "" : options;
    return exports().j_initDLL(ceiling, reserved, options);
}

std::int32_t PPT_CALL j_termDLL(std::int32_t reserved1, std::int32_t reserved2) {
    return exports().j_termDLL(reserved1, reserved2);
}

void PPT_CALL v_setNewMode() {
    exports().v_setNewMode();
}

std::int32_t PPT_CALL j_loadFile(const char* path, std::int32_t flags) {
    const std::int32_t status = exports().j_loadFile(path, flags);
    return status == ppt::status::kSuccess ? ppt::load_file(path, flags) : status;
}

std::int32_t PPT_CALL j_unLoadFile() {
    ppt::v_unload();
    return exports().j_unLoadFile();
}

std::int32_t PPT_CALL j_rewriteFile(char* path, std::int32_t flags) {
    return exports().j_rewriteFile(path, flags);
}

std::int32_t PPT_CALL n_getLinkCount() {
    return exports().n_getLinkCount();
}

std::int32_t PPT_CALL j_getLinkFileName(std::int32_t index, std::int32_t reserved, char* buffer) {
    return exports().j_getLinkFileName(index, reserved, buffer);
}

std::int32_t PPT_CALL j_setLinkFileName(std::int32_t index, const char* name,
                                        std::int32_t reserved) {
    return exports().j_setLinkFileName(index, name, reserved);
}

std::int32_t PPT_CALL j_getLinkId(std::int32_t index, std::int32_t reserved, id64* id) {
    return exports().j_getLinkId(index, reserved, id);
}

std::int32_t PPT_CALL j_setLinkId(std::int32_t index, std::int32_t reserved, const id64* id) {
    return exports().j_setLinkId(index, reserved, id);
}

std::int32_t PPT_CALL j_getHyperlinkText(std::int32_t index, char* buffer) {
    return exports().j_getHyperlinkText(index, buffer);
}

std::int32_t PPT_CALL j_getTargetFileId(std::int32_t reserved, id64* id) {
    return exports().j_getTargetFileId(reserved, id);
}

std::int32_t PPT_CALL j_setTargetFileId(std::int32_t reserved, const id64* id) {
    return exports().j_setTargetFileId(reserved, id);
}

std::int32_t PPT_CALL j_accessTargetFile(const char* pc_targetFile, const char* pc_masterFile,
                                         char* pc_foundFile, std::int32_t reserved) {
    return exports().j_accessTargetFile(pc_targetFile, pc_masterFile, pc_foundFile, reserved);
}

ppt::ErrorParamArray* PPT_CALL ps_getErrorParamArray() {
    return exports().ps_getErrorParamArray();
}

void PPT_CALL v_getStandardMasterFileExtension(std::int32_t index, char* buffer) {
    exports().v_getStandardMasterFileExtension(index, buffer);
}

void PPT_CALL v_getStandardTargetFileExtension(std::int32_t index, char* buffer) {
    exports().v_getStandardTargetFileExtension(index, buffer);
}
}
