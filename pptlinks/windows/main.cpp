// pptlinks on Windows: the arguments come in UTF-16 and the console is told that output is in
// UTF-8. Line ends are written as they are everywhere else, for whoever compares or parses the
// output.
#include "platform/platform.h"
#include "pptlinks/program.h"
#include "pptlinks/text_encoding.h"

#include <cstdio>
#include <fcntl.h>
#include <io.h>

extern "C" {
int _dowildcard = -1; // the C run-time expands *.ppt, which shells here leave alone
int wmain(int argc, wchar_t** argv);
}

namespace {

class Utf8Console {
  public:
    Utf8Console() { SetConsoleOutputCP(CP_UTF8); }
    Utf8Console(const Utf8Console&) = delete;
    Utf8Console& operator=(const Utf8Console&) = delete;
    ~Utf8Console() { SetConsoleOutputCP(before_); }

  private:
    UINT before_ = GetConsoleOutputCP();
};

} // namespace

int wmain(int argc, wchar_t** argv) {
    const Utf8Console console;
    _setmode(_fileno(stdout), _O_BINARY);
    _setmode(_fileno(stderr), _O_BINARY);
    std::vector<std::string> arguments;
    for (int i = 0; i < argc; ++i) {
        arguments.push_back(pptlinks::utf8_from_wide(argv[i]));
    }
    std::vector<const char*> pointers;
    for (const std::string& argument : arguments) {
        pointers.push_back(argument.c_str());
    }
    return pptlinks::run_program(argc, pointers.data());
}
