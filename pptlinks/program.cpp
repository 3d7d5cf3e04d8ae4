#include "pptlinks/program.h"

#include "pptlinks/arguments.h"
#include "pptlinks/check_command.h"
#include "pptlinks/failure.h"
#include "pptlinks/list_command.h"
#include "pptlinks/messages.h"
#include "pptlinks/output.h"
#include "pptlinks/relink_command.h"
#include "pptlinks/terminal_text.h"

namespace pptlinks {

namespace {

int run(const ListArguments& arguments) {
    return run_list(arguments);
}

int run(const CheckArguments& arguments) {
    return run_check(arguments);
}

int run(const RelinkArguments& arguments) {
    return run_relink(arguments);
}

int run(const PrintAndExit& result) {
    print(result.out);
    if (!result.error.empty()) {
        complain("pptlinks: " + terminal_text_from_utf8(result.error) +
                 "\nRun with --help for more information.");
    }
    return result.status;
}

} // namespace

int run_program(int argc, const char* const* argv) {
    try {
        return std::visit([](const auto& command) { return run(command); },
                          parse_arguments(argc, argv));
    } catch (const UsageError& error) {
        complain("pptlinks: " + terminal_text_from_utf8(error.what()) +
                 "; see \"pptlinks --help\".");
        return kExitWrongUsage;
    } catch (const FileFailure& failure) {
        complain(sentence(failure));
    } catch (const StatusFailure& failure) {
        complain(sentence(failure, {"the plug-in", {}}));
    } catch (const std::bad_alloc&) {
        complain("pptlinks: there is not enough memory; close other programs and try again.");
    } catch (const std::exception& error) {
        complain("pptlinks: this failed unexpectedly (" + terminal_text_from_utf8(error.what()) +
                 "); report it with the file.");
    }
    return kExitFailed;
}

} // namespace pptlinks
