// A game as far as the agent can tell: it runs for a while, crashes on purpose, and its crash handler writes
// one submission folder. Exit code: that of its crash, 0 without a crash, 2 for wrong arguments.
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <vector>

#include <windows.h>
// shellapi.h needs windows.h first
#include <shellapi.h>

#include "Tools/SampleGame/src/CrashHandler.h"
#include "Tools/SampleGame/src/Files.h"

namespace {

constexpr char Usage[] = "SampleGame [--dumps FOLDER] [--name NAME]\n"
                         "           [--crash access-violation|stack-overflow|abort|exception|none]\n"
                         "           [--attachments COUNT] [--attachment-size BYTES] [--stay-alive MS]\n"
                         "           [--fail-in-handler] [--quiet]\n";

struct Options {
    SampleGame::SubmissionSettings submission;
    std::string crash = "access-violation";
    uint32_t stayAliveMs = 0; // runs this long before it crashes or ends
};

template <class T>
bool ReadNumber(const std::string& text, T& number) {
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && stop == end;
}

bool ReadValue(const std::string& option, const std::string& value, Options& options) {
    if (option == "--dumps") {
        options.submission.dumpsFolder = value;
    } else if (option == "--name") {
        options.submission.name = value;
    } else if (option == "--crash") {
        options.crash = value;
    } else if (option == "--attachments") {
        return ReadNumber(value, options.submission.attachmentCount);
    } else if (option == "--attachment-size") {
        return ReadNumber(value, options.submission.attachmentSize);
    } else {
        return option == "--stay-alive" && ReadNumber(value, options.stayAliveMs);
    }
    return !value.empty();
}

bool ReadOptions(const std::vector<std::string>& words, Options& options) {
    for (std::size_t i = 1; i < words.size(); ++i) {
        if (words[i] == "--quiet") {
            options.submission.quiet = true;
        } else if (words[i] == "--fail-in-handler") {
            options.submission.failInHandler = true;
        } else if (i + 1 == words.size() || !ReadValue(words[i], words[i + 1], options)) {
            return false;
        } else {
            ++i;
        }
    }
    return true;
}

std::vector<std::string> CommandLineWords() {
    int count = 0;
    wchar_t** const wide = CommandLineToArgvW(GetCommandLineW(), &count);
    std::vector<std::string> words;
    for (int i = 0; i < count; ++i) {
        words.push_back(SampleGame::Narrow(wide[i]));
    }
    LocalFree(wide);
    return words;
}

// Needs 4 GiB of stack.
int Overflow(uint32_t depth) {
    volatile char frame[4096] = {};
    return depth == 0 ? 0 : Overflow(depth - 1) + frame[depth % sizeof(frame)];
}

// False for an unknown kind.
bool Crash(const std::string& kind) {
    if (kind == "access-violation") {
        volatile int* volatile nowhere = nullptr; // the compiler must not see that it is null
        *nowhere = 1;                             // NOLINT(clang-analyzer-core.NullDereference): the crash
    } else if (kind == "stack-overflow") {
        return Overflow(1 << 20) == 0;
    } else if (kind == "abort") {
        std::abort();
    } else if (kind == "exception") {
        throw std::runtime_error("the level caf\xE9 could not be loaded"); // as Latin-1 has it
    }
    return kind == "none";
}

} // namespace

// An exception leaves it: that is one of the crashes. NOLINTNEXTLINE(bugprone-exception-escape)
int main() {
    Options options;
    if (!ReadOptions(CommandLineWords(), options)) {
        std::fputs(Usage, stderr);
        return 2;
    }
    if (options.submission.name.empty()) {
        options.submission.name =
            "SampleGame_" + std::to_string(GetCurrentProcessId()) + "_" + std::to_string(GetTickCount64());
    }
    SampleGame::InstallCrashHandler(options.submission);
    SampleGame::LogLine("the game has started");
    Sleep(options.stayAliveMs);
    SampleGame::LogLine("the game goes wrong now");
    if (!Crash(options.crash)) {
        std::fputs(Usage, stderr);
        return 2;
    }
    return 0;
}
