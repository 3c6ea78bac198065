#pragma once

#include <string>
#include <vector>

#include "Libs/Tarnel/Platform/src/Common/Platform_Assert.h"

// Collects failed checks, from any thread, instead of printing them, while it lives. One at a time.
class AssertCapture {
public:
    explicit AssertCapture(int answer = Platform::AssertAnswer_IgnoreOnce) {
        s_failures.clear();
        s_answer = answer;
        Ask(&Record);
    }
    ~AssertCapture() { Ask(nullptr); }
    AssertCapture(const AssertCapture&) = delete; // there is one assertion state
    AssertCapture& operator=(const AssertCapture&) = delete;

    // Each as "source unit:line: expression: message".
    const std::vector<std::string>& Failures() const { return s_failures; }

private:
    // Without a handler as a program has it at its start.
    static void Ask(Platform::AssertHandler handler) {
        Platform::AssertState& state = *EXP_GetAssertState();
        state.handlers[0] = state.handlers[1] = handler;
        state.showDialogs = handler != nullptr;
        state.writeToDebugger = state.writeToLog = handler == nullptr;
    }

    // Called inside the state's critical section.
    static int Record(const char* unit, int line, const char* expression, const char* message) {
        s_failures.push_back(std::string(unit) + ":" + std::to_string(line) + ": " + expression + ": " +
                             message);
        return s_answer;
    }

    inline static std::vector<std::string> s_failures;
    inline static int s_answer = 0;
};
