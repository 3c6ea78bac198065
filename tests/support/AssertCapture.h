#pragma once

#include <string>
#include <tuple>
#include <vector>

#include "Libs/Tarnel/Platform/src/Common/Platform_Assert.h"

// Collects failed checks, from any thread, instead of printing them, while it lives. One at a time.
class AssertCapture {
public:
    struct Failure {
        int kind;
        std::string sourceUnit;
        int line;
        std::string expression;
        std::string message;
    };

    explicit AssertCapture(int answer = Platform::AssertAnswer_IgnoreOnce) {
        s_failures.clear();
        s_answer = answer;
        Switches() = std::tuple(1u, 0u, 0u);
        m_state.handlers[0] = &Record<0>;
        m_state.handlers[1] = &Record<1>;
    }
    ~AssertCapture() {
        Switches() = m_switches;
        m_state.handlers[0] = m_state.handlers[1] = nullptr;
    }
    AssertCapture(const AssertCapture&) = delete; // there is one assertion state
    AssertCapture& operator=(const AssertCapture&) = delete;

    const std::vector<Failure>& Failures() const { return s_failures; }

private:
    std::tuple<uint32_t&, uint32_t&, uint32_t&> Switches() const {
        return {m_state.showDialogs, m_state.writeToDebugger, m_state.writeToLog};
    }

    // Called inside the state's critical section.
    template <int Kind>
    static int Record(const char* unit, int line, const char* expression, const char* message) {
        s_failures.push_back({Kind, unit, line, expression, message});
        return s_answer;
    }

    inline static std::vector<Failure> s_failures;
    inline static int s_answer = 0;

    Platform::AssertState& m_state = *EXP_GetAssertState();
    const std::tuple<uint32_t, uint32_t, uint32_t> m_switches = Switches();
};
