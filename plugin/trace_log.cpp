#include "plugin/trace_log.h"

#include "platform/platform.h"

#include <cstdio>
#include <memory>

namespace ppt {

namespace {

constexpr std::size_t kLogPathLimit = 259;
constexpr DWORD kModulePathSize = 32768;

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

// Closed when the library is unloaded: its file belongs to a run-time library that may stay.
std::unique_ptr<std::FILE, CloseFile> log_file;

std::string executable_path() {
    std::string path(kModulePathSize, '\0');
    const DWORD length = GetModuleFileNameA(nullptr, path.data(), kModulePathSize);
    path.resize(length < kModulePathSize ? length : 0);
    return path;
}

// Every line end becomes CR LF.
void write_text(std::string_view text) {
    for (std::size_t end = text.find('\n'); end != std::string_view::npos; end = text.find('\n')) {
        std::fwrite(text.data(), 1, end, log_file.get());
        std::fwrite("\r\n", 1, 2, log_file.get());
        text.remove_prefix(end + 1);
    }
    std::fwrite(text.data(), 1, text.size(), log_file.get());
}

} // namespace

std::string log_path_for(const std::string& executable) {
    std::size_t separator = std::string::npos;
    for (std::size_t at = 0; at < executable.size(); ++at) {
        if (executable[at] == '\\' || executable[at] == '/') {
            separator = at;
        }
        // The second byte of a character may look like a separator.
        at += IsDBCSLeadByte(static_cast<BYTE>(executable[at])) != FALSE ? 1 : 0;
    }
    const std::string path = executable.substr(0, separator) + "\\PPT.log";
    return path.size() <= kLogPathLimit ? path : std::string();
}

void v_openLog() {
    if (log_file != nullptr) {
        return;
    }
    const std::string path = log_path_for(executable_path());
    if (!path.empty()) {
        log_file.reset(open_text_log(path.c_str()));
    }
}

void v_logLine(std::string_view text, std::string_view argument) {
    if (log_file == nullptr) {
        return;
    }
    write_text(text);
    write_text(argument);
    write_text("\n");
}

} // namespace ppt
