#include <algorithm>
#include <array>

#include "Libs/Framework/Core/src/Thread.h"
#include "Libs/Framework/Core/src/ThreadExitCode.h"

namespace {

struct CodeRange {
    uint32_t first;
    uint32_t last;
};

// The system's exceptions that end a thread when nothing handles them.
constexpr std::array CrashCodes = {
    CodeRange{0x80000001, 0x80000004}, // guard page, misalignment, breakpoint, single step
    CodeRange{0xC0000005, 0xC0000006}, // access violation, page that can't be read
    CodeRange{0xC0000008, 0xC0000008}, // invalid handle
    CodeRange{0xC000001D, 0xC000001D}, // illegal instruction
    CodeRange{0xC0000025, 0xC0000026}, // non-continuable, invalid disposition
    CodeRange{0xC000008C, 0xC0000096}, // array bounds, arithmetic, privileged instruction
    CodeRange{0xC00000FD, 0xC00000FD}, // stack overflow
    CodeRange{0xC000013A, 0xC000013A}, // Ctrl+C
};

} // namespace

Thread::Status Thread::StatusOfExitCode(uint32_t exitCode) {
    if (exitCode == ThreadExitCode::StillActive) {
        return Status::Running;
    }
    if (exitCode == ThreadExitCode::FunctionReturned) {
        return Status::EndedNormally;
    }
    const bool crashed =
        std::any_of(CrashCodes.begin(), CrashCodes.end(), [exitCode](const CodeRange& range) {
            return range.first <= exitCode && exitCode <= range.last;
        });
    return crashed ? Status::Failed : Status::Ended;
}
