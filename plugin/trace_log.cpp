#include "plugin/trace_log.h"

#include "platform/platform.h"

#include <cstdarg>
#include <cstdio>

namespace ppt {

namespace {

constexpr std::size_t kLogPathLimit = 259;
constexpr DWORD kModulePathSize = 32768;

std::FILE* log_file = nullptr;

std::string executable_path() {
    std::string path(kModulePathSize, '\0');
    const DWORD length = GetModuleFileNameA(nullptr, path.data(), kModulePathSize);
    path.resize(length < kModulePathSize ? length : 0);
    return path;
}

} // namespace

std::string log_path_for(const std::string& executable) {
    const std::size_t separator = executable.find_last_of("\\/");
    const std::string path = executable.substr(0, separator) + "\\PPT.log";
    return path.size() <= kLogPathLimit ? path : std::string();
}

void v_openLog() {
    if (log_file != nullptr) {
        return;
    }
    const std::string path = log_path_for(executable_path());
    if (!path.empty()) {
        log_file = open_text_log(path.c_str());
    }
}

void v_logLine(const char* format, ...) {
    if (log_file == nullptr) {
        return;
    }
    // Texts of a line are paths and hyperlink targets of at most 1023 bytes; a longer one is cut.
    char line[2048];
    std::va_list arguments;
    va_start(arguments, format);
    const int length = std::vsnprintf(line, sizeof line, format, arguments);
    va_end(arguments);
    if (length <= 0) {
        return;
    }
    std::size_t size = static_cast<std::size_t>(length);
    size = size < sizeof line ? size : sizeof line - 1;
    if (line[size - 1] == '\n') {
        --size;
    }
    std::fwrite(line, 1, size, log_file);
    std::fwrite("\r\n", 1, 2, log_file);
}

} // namespace ppt
