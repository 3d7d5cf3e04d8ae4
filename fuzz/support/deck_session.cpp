#include "fuzz/support/deck_session.h"

#include "fuzz/support/target.h"
#include "platform/posix/settings.h"
#include "plugin/exports.h"
#include "plugin/state.h"
#include "plugin/status.h"

#include <array>

namespace fuzz {

namespace {

constexpr std::int32_t kBothFlags = ppt::kFlagLinks | ppt::kFlagTargetFileId;
constexpr std::size_t kTextBuffer = 1024;
constexpr std::int32_t kHighestVersion = 255;

} // namespace

// The state is set here and not through j_initDLL, whose trace log would grow with every input.
DeckSession::DeckSession() {
    CoInitialize(nullptr);
    ppt::state().version_ceiling = kHighestVersion;
    platform::set_ansi_code_page(1252);
    platform::trust_link_targets(true);
}

std::int32_t DeckSession::load(const DeckInput& input) {
    ppt::state().options = input.options;
    folder_.write(kDeck, input.image);
    return load_file(kDeck);
}

std::int32_t DeckSession::load_file(const char* name) const {
    return j_loadFile(folder_.path(name).c_str(), kBothFlags);
}

std::int32_t DeckSession::rewrite(const char* name) const {
    std::string path = folder_.path(name);
    return j_rewriteFile(path.data(), kBothFlags);
}

void DeckSession::unload() const {
    j_unLoadFile();
}

std::vector<std::string> DeckSession::link_paths() const {
    std::vector<std::string> paths;
    for (std::int32_t i = 0; i < n_getLinkCount(); ++i) {
        std::array<char, kTextBuffer> text{};
        id64 id{};
        j_getHyperlinkText(i, text.data());
        j_getLinkId(i, 0, &id);
        const std::int32_t status = j_getLinkFileName(i, 0, text.data());
        require(status == 0, "every link of the table has a path that can be had");
        paths.emplace_back(text.data());
    }
    return paths;
}

} // namespace fuzz
