// Measures the command-line host on decks of growing size against plain reading and copying of the
// same file, all in one run:
//
//     compare PPTLINKS MAKE_DECK FOLDER
//
// Every command runs several times; the median of the wall-clock times counts, and the largest
// memory. Decks are made in FOLDER and removed again.
#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <spawn.h>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <vector>

extern char** environ;

namespace {

constexpr int kRuns = 9;

struct DeckSize {
    int slides;
    int links;
    long long pictures; // bytes
};

constexpr std::array kDecks = {
    DeckSize{10, 100, 0},
    DeckSize{100, 1'000, 15'000'000},
    DeckSize{1'000, 1'000, 150'000'000},
    DeckSize{1'000, 5'000, 150'000'000},
    DeckSize{1'000, 20'000, 150'000'000},
};

struct Measured {
    double milliseconds = 0; // median
    double megabytes = 0;    // largest resident set
};

// Runs a command with its output thrown away; exits with a message when it fails.
Measured run_once(const std::vector<std::string>& command) {
    std::vector<char*> arguments;
    for (const std::string& argument : command) {
        arguments.push_back(const_cast<char*>(argument.c_str()));
    }
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    const auto start = std::chrono::steady_clock::now();
    pid_t child = 0;
    const int failure =
        posix_spawnp(&child, arguments[0], &actions, nullptr, arguments.data(), environ);
    int status = -1;
    rusage usage{};
    if (failure == 0) {
        wait4(child, &status, 0, &usage);
    }
    const std::chrono::duration<double, std::milli> elapsed =
        std::chrono::steady_clock::now() - start;
    posix_spawn_file_actions_destroy(&actions);
    if (status != 0) {
        std::fprintf(stderr, "compare: %s failed\n", command[0].c_str());
        std::exit(1);
    }
    return {elapsed.count(), static_cast<double>(usage.ru_maxrss) / 1024};
}

// `output` is what the command writes, removed before every run; empty for none.
Measured measure(const std::vector<std::string>& command, const std::string& output) {
    std::vector<double> times;
    Measured result;
    for (int run = 0; run < kRuns; ++run) {
        if (!output.empty()) {
            std::filesystem::remove(output);
        }
        const Measured once = run_once(command);
        times.push_back(once.milliseconds);
        result.megabytes = std::max(result.megabytes, once.megabytes);
    }
    std::nth_element(times.begin(), times.begin() + kRuns / 2, times.end());
    result.milliseconds = times[kRuns / 2];
    return result;
}

void compare(const DeckSize& size, const std::string& pptlinks, const std::string& make_deck,
             const std::string& folder) {
    const std::string deck = folder + "/deck.ppt";
    const std::string out = folder + "/out.ppt";
    run_once({make_deck, deck, "--slides", std::to_string(size.slides), "--links",
              std::to_string(size.links), "--pictures", std::to_string(size.pictures)});
    const Measured cat = measure({"cat", deck}, {});
    const Measured list = measure({pptlinks, "list", deck}, {});
    const Measured cp = measure({"cp", deck, out}, out);
    // One map for each kind of target that the decks hold, so every link changes.
    const Measured relink = measure({pptlinks, "relink", deck, "-o", out, "--map",
                                     "\\\\fileserver\\projects=\\\\new\\p", "--map",
                                     "C:\\Documents=D:\\Archive\\Documents", "--map",
                                     "..=E:\\decks", "--map", "http:=https:"},
                                    out);
    const double megabytes = static_cast<double>(std::filesystem::file_size(deck)) / 1e6;
    std::printf("%6d %6d %6.1f | %7.1f %7.1f %6.2f %7.2f %5.1f | %7.1f %7.1f %6.2f %7.2f %5.1f\n",
                size.slides, size.links, megabytes, cat.milliseconds, list.milliseconds,
                list.milliseconds / cat.milliseconds, 1000 * list.milliseconds / size.links,
                list.megabytes, cp.milliseconds, relink.milliseconds,
                relink.milliseconds / cp.milliseconds, 1000 * relink.milliseconds / size.links,
                relink.megabytes);
    std::fflush(stdout);
    std::filesystem::remove(deck);
    std::filesystem::remove(out);
}

} // namespace

int main(int count, char** arguments) {
    if (count != 4) {
        std::fprintf(stderr, "Usage: compare PPTLINKS MAKE_DECK FOLDER\n");
        return 2;
    }
    std::printf("%20s | %36s | %36s\n", "deck", "cat, list", "cp, relink of every link");
    std::printf("slides  links     MB |  cat ms list ms  ratio us/link    MB"
                " |   cp ms  rel ms  ratio us/link    MB\n");
    for (const DeckSize& size : kDecks) {
        compare(size, arguments[1], arguments[2], arguments[3]);
    }
    return 0;
}
