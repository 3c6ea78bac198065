#pragma once

#include <string>
#include <vector>

#include "Libs/Tarnel/Platform/src/Common/Platform_AssertState.h"

// Collects the failed checks of a test instead of printing them, and puts the switches back afterwards. One
// at a time; checks may fail on any thread.
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
        m_showDialogs = m_state.showDialogs;
        m_writeToDebugger = m_state.writeToDebugger;
        m_writeToLog = m_state.writeToLog;
        m_state.showDialogs = 1;
        m_state.writeToDebugger = 0;
        m_state.writeToLog = 0;
        m_state.handlers[0] = [](const char* unit, int line, const char* expression, const char* message) {
            return Record(0, unit, line, expression, message);
        };
        m_state.handlers[1] = [](const char* unit, int line, const char* expression, const char* message) {
            return Record(1, unit, line, expression, message);
        };
    }
    ~AssertCapture() {
        m_state.showDialogs = m_showDialogs;
        m_state.writeToDebugger = m_writeToDebugger;
        m_state.writeToLog = m_writeToLog;
        m_state.handlers[0] = nullptr;
        m_state.handlers[1] = nullptr;
    }
    AssertCapture(const AssertCapture&) = delete; // there is one assertion state
    AssertCapture& operator=(const AssertCapture&) = delete;

    // "expression|message" of every failure, for one comparison.
    std::vector<std::string> Texts() const {
        std::vector<std::string> texts;
        texts.reserve(s_failures.size());
        for (const Failure& failure : s_failures) {
            texts.push_back(failure.expression + "|" + failure.message);
        }
        return texts;
    }
    const std::vector<Failure>& Failures() const { return s_failures; }

private:
    static int Record(int kind, const char* unit, int line, const char* expression, const char* message) {
        s_failures.push_back({kind, unit, line, expression, message}); // inside the state's critical section
        return s_answer;
    }

    inline static std::vector<Failure> s_failures;
    inline static int s_answer = 0;

    Platform::AssertState& m_state = *EXP_GetAssertState();
    uint32_t m_showDialogs = 0;
    uint32_t m_writeToDebugger = 0;
    uint32_t m_writeToLog = 0;
};
