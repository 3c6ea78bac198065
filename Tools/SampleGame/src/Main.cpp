// A game as far as the agent can tell: it runs for a while, crashes on purpose, and its crash handler writes
// one submission folder. It ends with the code of its crash, or 0 when it was told not to crash, 2 for wrong
// arguments.

#include <cstdio>
#include <cstdlib>
#include <stdexcept>

#include "Tools/SampleGame/src/CrashHandler.h"
#include "Tools/SampleGame/src/Options.h"

#include <windows.h>

namespace {

void Crash(SampleGame::CrashKind kind) {
    switch (kind) {
    case SampleGame::CrashKind::None:
        return;
    case SampleGame::CrashKind::AccessViolation: {
        volatile int* volatile nowhere = nullptr; // the compiler may not see that it is a mistake
        *nowhere = 1;                             // NOLINT(clang-analyzer-core.NullDereference): the crash
        return;
    }
    case SampleGame::CrashKind::Abort:
        std::abort();
    case SampleGame::CrashKind::Exception:
        throw std::runtime_error("the level could not be loaded");
    }
}

std::string UniqueName() {
    return "SampleGame_" + std::to_string(GetCurrentProcessId()) + "_" + std::to_string(GetTickCount64());
}

} // namespace

// An exception leaves it: that is one of the crashes. NOLINTNEXTLINE(bugprone-exception-escape)
int main(int argc, char** argv) {
    SampleGame::Options options;
    const std::string problem = SampleGame::ParseOptions(argc, argv, options);
    if (!problem.empty()) {
        fprintf(stderr, "%s\n%s", problem.c_str(), SampleGame::g_usage);
        return 2;
    }
    if (options.name.empty()) {
        options.name = UniqueName();
    }
    SampleGame::InstallCrashHandler(options);
    SampleGame::LogLine("the game has started");
    Sleep(options.stayAliveMs);
    SampleGame::LogLine("the game goes wrong now");
    Crash(options.crash);
    return 0;
}
