// Several processes on one file: who comes second is told so, and nobody sees or makes a file of
// which only a part is there.
#include "common_new/common/storage.h"
#include "platform/base/com_ptr.h"
#include "platform/posix/settings.h"
#include "plugin/status.h"
#include "pptlinks/program.h"
#include "tests/common_new/unprivileged.h"
#include "tests/faults/fault_deck.h"
#include "tests/plugin/plugin_fixture.h"
#include "tests/pptlinks/built_program.h"
#include "tests/pptlinks/code_page_guard.h"

#include <chrono>
#include <functional>
#include <memory>
#include <set>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace fault {
namespace {

using namespace ppt;
using plugin_test::error_params;
using pptlinks::BuiltProgram;
using pptlinks::RunResult;

constexpr const char* kInUse =
    "pptlinks: shared.ppt: it is in use by another program; close the other program and try again "
    "(status 7530).\n";

class TwoProcesses : public plugin_test::PluginTest {
  protected:
    void SetUp() override {
        PluginTest::SetUp();
        platform::trust_link_targets(true);
        every_kind_of_link(Ids::as_properties).write(path("shared.ppt"));
        every_kind_of_link(Ids::on_pages).write(path("other.ppt"));
        shared_ = bytes_of("shared.ppt");
    }

    void TearDown() override {
        platform::trust_link_targets(false);
        PluginTest::TearDown();
    }

    RunResult run(const std::vector<std::string>& arguments) const {
        return BuiltProgram(path(""), arguments).wait();
    }

    // Holds the file as another host does that reads it, or that writes it.
    ComPtr<IStorage> open(const std::string& name, bool read_only) const {
        ComPtr<IStorage> root;
        EXPECT_EQ(try_to_open(name, read_only, root), 0);
        return root;
    }

    std::int32_t try_to_open(const std::string& name, bool read_only,
                             ComPtr<IStorage>& root) const {
        const std::string file = path(name);
        return j_openStorageFile(std::u16string(file.begin(), file.end()).c_str(), read_only,
                                 root.put());
    }

    // The error parameters: the path, and whoever runs this when `with_user` is set.
    std::string about(const std::string& name, bool with_user) const {
        char user[64] = "";
        DWORD size = sizeof user;
        EXPECT_NE(GetUserNameA(user, &size), FALSE);
        return path(name) + (with_user ? std::string("|") + user : "");
    }

    std::string shared_;
};

// Processes that wait for each other and then run at once.
class StartTogether {
  public:
    StartTogether() { EXPECT_EQ(pipe(gate_), 0); }
    StartTogether(const StartTogether&) = delete;
    StartTogether& operator=(const StartTogether&) = delete;
    ~StartTogether() {
        close(gate_[0]);
        start();
    }

    // In the child: until all may start.
    void wait() const {
        char byte = 0;
        close(gate_[1]);
        static_cast<void>(read(gate_[0], &byte, 1));
    }

    void start() { close(std::exchange(gate_[1], -1)); }

  private:
    int gate_[2] = {-1, -1};
};

TEST_F(TwoProcesses, AHundredListsRunWhileAWriterIsKeptOut) {
    const pptlinks::RunResult alone = run({"list", "shared.ppt"});
    ASSERT_EQ(alone.status, 0) << alone.error;
    const auto reader = open("shared.ppt", true);
    StartTogether gate;
    std::vector<std::unique_ptr<BuiltProgram>> lists;
    for (int i = 0; i < 100; ++i) {
        // The program within a copy of this process, which starts in no time.
        lists.push_back(
            std::make_unique<BuiltProgram>(path(""), std::vector<std::string>{}, [&gate] {
                gate.wait();
                const CodePageGuard code_page(CP_UTF8);
                const char* const arguments[] = {"pptlinks", "list", "shared.ppt"};
                _exit(pptlinks::run_program(3, arguments));
            }));
    }
    ASSERT_EQ(load_again("other.ppt"), 0);
    gate.start();
    for (const auto& list : lists) {
        EXPECT_EQ(rewrite("shared.ppt"), status::kAccessDenied);
        EXPECT_EQ(error_params(), about("shared.ppt", true));
        const RunResult result = list->wait();
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(result.error, "");
        EXPECT_EQ(result.out, alone.out);
    }
    EXPECT_EQ(bytes_of("shared.ppt") == shared_, true);
}

TEST_F(TwoProcesses, WhatAnotherWritesIsNeitherReadNorWritten) {
    ASSERT_EQ(load_again("other.ppt"), 0);
    auto writer = open("shared.ppt", false);
    for (const char* command : {"list", "check"}) {
        const RunResult result = run({command, "shared.ppt"});
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.error, kInUse);
    }
    const RunResult relinked = run({"relink", "shared.ppt", "-o", "out.ppt", "--map", "C:=D:"});
    EXPECT_EQ(relinked.status, 1);
    EXPECT_EQ(relinked.error, kInUse);
    EXPECT_FALSE(std::filesystem::exists(path("out.ppt")));
    EXPECT_EQ(rewrite("shared.ppt"), status::kAccessDenied);
    EXPECT_EQ(error_params(), about("shared.ppt", true));
    for (const bool read_only : {true, false}) {
        ComPtr<IStorage> root;
        EXPECT_EQ(try_to_open("shared.ppt", read_only, root), status::kInUseByOther);
        EXPECT_EQ(error_params(), about("shared.ppt", false));
    }
    writer.reset();
    EXPECT_EQ(run({"list", "shared.ppt"}).status, 0);
    EXPECT_EQ(bytes_of("shared.ppt") == shared_, true);
    EXPECT_EQ(rewrite("shared.ppt"), 0); // what was refused is still loaded

    std::filesystem::permissions(path("shared.ppt"), std::filesystem::perms::owner_read |
                                                         std::filesystem::perms::others_read);
    const Unprivileged user;
    ComPtr<IStorage> root;
    EXPECT_EQ(try_to_open("shared.ppt", false, root), status::kWriteProtected);
    EXPECT_EQ(error_params(), about("shared.ppt", true));
}

TEST_F(TwoProcesses, AListedFileCanBeReplacedAndStaysWholeForWhoListsIt) {
    ASSERT_EQ(load_again("shared.ppt"), 0);
    const std::string links = loaded_links();
    const RunResult result =
        run({"relink", "other.ppt", "-o", "shared.ppt", "--map", "C:=D:", "--trust-targets"});
    EXPECT_EQ(result.status, 0) << result.error;
    const std::string replacement = bytes_of("shared.ppt");
    EXPECT_EQ(loaded_links(), links);
    // What is at the path now is another presentation than the one that is loaded.
    change_all_links("new");
    EXPECT_EQ(rewrite("out.ppt"), status::kInUseByOther);
    EXPECT_EQ(error_params(), about("shared.ppt", false));
    EXPECT_EQ(bytes_of("shared.ppt") == replacement, true);
    ASSERT_EQ(load_again("shared.ppt"), 0);
    EXPECT_EQ(link_path(0).substr(0, 2), "D:");
}

// Runs `step` again and again in processes of their own; each ends with 0 unless it complains.
class Crowd {
  public:
    using Step = std::function<std::string()>; // gives what is wrong

    void add(const Step& step) {
        processes_.push_back(fork());
        if (processes_.back() == 0) {
            const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(2);
            std::string wrong;
            while (wrong.empty() && std::chrono::steady_clock::now() < end) {
                wrong = step();
            }
            std::fputs(wrong.c_str(), stderr);
            std::fflush(stderr);
            _exit(wrong.empty() ? 0 : 1);
        }
    }

    void expect_no_complaints() {
        for (const pid_t process : processes_) {
            int state = 0;
            EXPECT_EQ(waitpid(process, &state, 0), process);
            EXPECT_EQ(state, 0);
        }
    }

  private:
    std::vector<pid_t> processes_;
};

TEST_F(TwoProcesses, ReadersAndWritersAtOnceNeverMakeOrSeeATornFile) {
    std::set<std::string> whole{bytes_of("other.ppt")};
    const std::string sources[] = {"first.ppt", "second.ppt"};
    every_kind_of_link(Ids::as_properties).write(path(sources[0]));
    presentation_builder::Deck longer = every_kind_of_link(Ids::on_pages);
    longer.add_slide();
    longer.write(path(sources[1]));
    for (const std::string& source : sources) {
        whole.insert(bytes_of(source));
        ASSERT_EQ(load_again(source), 0);
        change_all_links(source);
        ASSERT_EQ(rewrite("expected.ppt"), 0);
        whole.insert(bytes_of("expected.ppt"));
    }
    std::filesystem::remove(path("shared.ppt"));
    std::filesystem::copy_file(path("other.ppt"), path("shared.ppt"));
    Crowd crowd;
    for (const std::string& source : sources) {
        crowd.add([&]() -> std::string {
            if (load_again(source) != 0) {
                return "a file that nobody writes could not be read\n";
            }
            change_all_links(source);
            const std::int32_t written = rewrite("shared.ppt");
            const bool in_order = written == 0 || written == status::kAccessDenied ||
                                  written == status::kInUseByOther;
            return in_order ? "" : "writing ended with " + std::to_string(written) + '\n';
        });
        crowd.add([&]() -> std::string {
            std::this_thread::sleep_for(std::chrono::milliseconds(60)); // leaves room to write
            const std::int32_t loaded = load_again("shared.ppt");
            if (loaded != 0) {
                return loaded == status::kInUseByOther
                           ? ""
                           : "reading ended with " + std::to_string(loaded) + '\n';
            }
            const bool is_whole = whole.contains(bytes_of("shared.ppt"));
            j_unLoadFile();
            return is_whole ? "" : "a torn file was read\n";
        });
    }
    crowd.expect_no_complaints();
    EXPECT_TRUE(whole.contains(bytes_of("shared.ppt")));
}

} // namespace
} // namespace fault
