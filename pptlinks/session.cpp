#include "pptlinks/session.h"

#include "common_new/common/target_access.h"
#include "plugin/exports.h"
#include "plugin/state.h"
#include "plugin/status.h"
#include "pptlinks/file_names.h"
#include "pptlinks/machine.h"
#include "pptlinks/messages.h"
#include "pptlinks/number_parameter.h"
#include "pptlinks/text_encoding.h"
#include "reader/presentation.h"
#include "reader/record_types.h"

#include <algorithm>
#include <filesystem>

namespace pptlinks {

namespace {

// The version that the host library reports is one byte of the file, 3 in all files of the format.
// No file is refused for that byte alone: what cannot be read shows in its structure.
constexpr std::int32_t kVersionCeiling = 255;

constexpr std::int32_t kAllFlags = ppt::kFlagLinks | ppt::kFlagTargetFileId;

constexpr std::size_t kTextBuffer = 1024; // what the plug-in fills at most
constexpr std::size_t kIdBuffer = 32;

// Good until the next failure.
WideView error_parameter_text() {
    const ppt::ErrorParamArray* const array = ps_getErrorParamArray();
    return array->text == nullptr ? WideView() : WideView(array->text);
}

// The parameters one by one, where they stand: there may be millions.
class ErrorParameters {
  public:
    explicit ErrorParameters(WideView text)
        : text_(text) {}

    bool at_end() const { return start_ > text_.size(); }

    // Empty at the end.
    WideView next() {
        const std::size_t start = std::min(start_, text_.size());
        const std::size_t end =
            std::min(text_.find(ppt::kErrorParamSeparator, start), text_.size());
        start_ = end + 1;
        return text_.substr(start, end - start);
    }

  private:
    WideView text_;
    std::size_t start_ = 0;
};

std::vector<WideString> split_parameters(WideView text) {
    std::vector<WideString> split;
    for (ErrorParameters parameters(text); !parameters.at_end();) {
        split.emplace_back(parameters.next());
    }
    return split;
}

// Tells the parameters of the next failure from those of an earlier one, which a failure without
// parameters leaves in place: puts a text there that only a question for link -1 gives.
class ErrorParameterMark {
  public:
    ErrorParameterMark() {
        char buffer[kTextBuffer];
        j_getLinkFileName(-1, 0, buffer);
        mark_ = error_parameter_text();
    }

    // Throws StatusFailure unless the call that was made since succeeded.
    void require_success(std::int32_t result, bool while_rewriting = false) const {
        if (result == ppt::status::kSuccess) {
            return;
        }
        const WideView text = error_parameter_text();
        StatusFailure failure(result,
                              text == mark_ ? std::vector<WideString>() : split_parameters(text));
        failure.while_rewriting = while_rewriting;
        throw failure;
    }

  private:
    WideString mark_;
};

const ppt::LinkRecord& record_at(std::int32_t index) {
    return *ppt::state().links.at(index);
}

LinkKind kind_of(const ppt::LinkRecord& record) {
    switch (record.record_type) {
    case ppt::RT_ExternalHyperlink:
        return LinkKind::hyperlink;
    case ppt::RT_ExternalVideo:
        return LinkKind::movie;
    case ppt::RT_ExternalMidiAudio:
        return LinkKind::midi;
    case ppt::RT_ExternalWavAudioLink:
        return LinkKind::sound;
    case 0:
        return LinkKind::picture;
    default:
        return LinkKind::ole;
    }
}

std::string page_of(const ppt::LinkRecord& record) {
    constexpr const char* kNames[] = {"slide ", "master ", "notes "};
    const std::vector<ppt::Page>& pages = ppt::state().presentation->pages;
    const auto index = static_cast<std::size_t>(record.slide_index);
    if (record.slide_index < 0 || index >= pages.size()) {
        return {};
    }
    return kNames[static_cast<std::size_t>(pages[index].kind)] +
           std::to_string(pages[index].number);
}

std::optional<std::string> id_text(const id64& id) {
    if (b_id64IsClear(&id) != 0) {
        return std::nullopt;
    }
    char text[kIdBuffer];
    v_id64ToStr(&id, text);
    return text;
}

id64 id_of(const std::string& text) {
    id64 id;
    v_id64FromStr(&id, text.c_str());
    return id;
}

// What is there instead of a file that could be read, if that is why access is denied.
std::optional<std::int32_t> no_plain_file(const std::string& ansi_path) {
    std::error_code missing;
    const std::filesystem::file_status found =
        std::filesystem::status(fs_path(native_path(ansi_path)), missing);
    if (!std::filesystem::exists(found) || std::filesystem::is_regular_file(found)) {
        return std::nullopt;
    }
    return std::filesystem::is_directory(found) ? kIsFolder : kIsDevice;
}

bool is_folder_missing(const std::string& ansi_path) {
    return GetFileAttributesA(ansi_path.c_str()) == INVALID_FILE_ATTRIBUTES &&
           GetLastError() == ERROR_PATH_NOT_FOUND;
}

// What a status that stands for several things means for this file, when that can be told.
std::optional<std::int32_t> closer_status(std::int32_t status, const std::string& ansi_path) {
    if (status == ppt::status::kInUseByOther &&
        StgIsStorageFile(wide_from_ansi(ansi_path).c_str()) == S_FALSE) {
        return ppt::status::kNotAPresentation;
    }
    if (status == ppt::status::kAccessDenied) {
        return no_plain_file(ansi_path);
    }
    if (status == ppt::status::kDamaged && is_folder_missing(ansi_path)) {
        return ppt::status::kPathNotFound;
    }
    return std::nullopt;
}

} // namespace

std::string_view name_of(LinkKind kind) {
    constexpr std::string_view kNames[] = {"hyperlink", "ole", "movie", "midi", "sound", "picture"};
    return kNames[static_cast<std::size_t>(kind)];
}

Session::Session(const CommonArguments& arguments)
    : keeps_going_(!arguments.strict) {
    if (arguments.code_page) {
        use_code_page(*arguments.code_page);
    }
    for (const std::string& entry : arguments.drives) {
        map_drive(entry);
    }
    v_setNewMode();
    const std::string options = arguments.options + (keeps_going_ ? "kw" : "w");
    const std::int32_t result = j_initDLL(kVersionCeiling, 0, options.c_str());
    if (result != ppt::status::kSuccess) {
        throw StatusFailure(result, {});
    }
}

Session::~Session() {
    j_termDLL(0, 0);
}

LoadedPresentation::LoadedPresentation(const Session& session, const std::string& ansi_path) {
    const ErrorParameterMark mark;
    const std::int32_t result = j_loadFile(ansi_path.c_str(), kAllFlags);
    try {
        mark.require_success(result);
    } catch (StatusFailure& failure) {
        failure.worded_as = closer_status(result, ansi_path);
        throw;
    }
    if (session.keeps_going()) {
        unread_ = unread_from(split_parameters(error_parameter_text()));
    }
    had_own_id_ = target_file_id().has_value();
}

LoadedPresentation::~LoadedPresentation() {
    j_unLoadFile();
}

std::int32_t LoadedPresentation::link_count() const {
    return n_getLinkCount();
}

Link LoadedPresentation::link(std::int32_t index) const {
    const auto require_success = [](std::int32_t result) {
        if (result != ppt::status::kSuccess) {
            throw StatusFailure(result, split_parameters(error_parameter_text()));
        }
    };
    char text[kTextBuffer];
    id64 id;
    Link link;
    require_success(j_getLinkFileName(index, 0, text));
    link.path = text;
    require_success(j_getHyperlinkText(index, text));
    link.text = text;
    require_success(j_getLinkId(index, 0, &id));
    link.id = id_text(id);
    const ppt::LinkRecord& record = record_at(index);
    link.kind = kind_of(record);
    link.page = page_of(record);
    link.object_list_ordinal = record.object_list_ordinal;
    link.external_object_id = record.external_object_id;
    return link;
}

std::optional<std::string> LoadedPresentation::target_file_id() const {
    id64 id;
    j_getTargetFileId(0, &id);
    return id_text(id);
}

bool LoadedPresentation::set_path(std::int32_t index, const std::string& path) {
    const std::string before = link(index).path;
    const ErrorParameterMark mark;
    mark.require_success(j_setLinkFileName(index, path.c_str(), 0));
    return link(index).path != before;
}

void LoadedPresentation::set_id(std::int32_t index, const std::string& id) {
    const ErrorParameterMark mark;
    const id64 value = id_of(id);
    mark.require_success(j_setLinkId(index, 0, &value));
}

void LoadedPresentation::set_target_file_id(const std::string& id) {
    const id64 value = id_of(id);
    j_setTargetFileId(0, &value);
}

std::vector<std::int32_t> LoadedPresentation::rewrite(const std::string& ansi_path) {
    const ErrorParameterMark mark;
    std::vector<char> path(ansi_path.begin(), ansi_path.end()); // changed in place by the call
    path.push_back('\0');
    // The flag for the presentation's own id makes a property, also for none.
    const bool has_own_id = had_own_id_ || target_file_id();
    const std::int32_t flags = has_own_id ? kAllFlags : ppt::kFlagLinks;
    mark.require_success(j_rewriteFile(path.data(), flags), true);
    ErrorParameters parameters(error_parameter_text());
    std::vector<std::int32_t> not_written(number_from<std::uint32_t>(parameters.next()));
    for (std::int32_t& index : not_written) {
        index = number_from<std::int32_t>(parameters.next());
    }
    return not_written;
}

std::string found_target(const std::string& ansi_target, const std::string& ansi_presentation) {
    const ErrorParameterMark mark;
    char found[ppt::kFoundFileSize];
    mark.require_success(
        j_accessTargetFile(ansi_target.c_str(), ansi_presentation.c_str(), found, 0));
    return found;
}

} // namespace pptlinks
