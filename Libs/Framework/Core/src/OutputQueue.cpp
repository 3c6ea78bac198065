#include "Libs/Framework/Core/src/OutputQueue.h"

#include <windows.h>

#include <cstdio>
#include <deque>
#include <mutex>
#include <new>
#include <string>
#include <utility>

#include "Libs/Framework/Core/src/Thread.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Log.h"

namespace {

constexpr DWORD LongestWait = 1000; // milliseconds

struct Line {
    HANDLE output = nullptr;
    std::string text;
};

// The standard ones allocate when they are first used, and one whose allocation failed crashes its next user.
struct QueueLock {
    SRWLOCK section = SRWLOCK_INIT;
    void lock() { AcquireSRWLockExclusive(&section); }
    void unlock() { ReleaseSRWLockExclusive(&section); }
};

void WriteWhole(const Line& line) {
    DWORD written = 0;
    for (std::size_t done = 0; done < line.text.size(); done += written) {
        const std::size_t left = line.text.size() - done;
        if (!WriteFile(line.output, line.text.data() + done, static_cast<DWORD>(left), &written, nullptr) ||
            written == 0) {
            return; // the reader has gone, or there is no output
        }
    }
}

} // namespace

struct OutputQueue::State {
    QueueLock lock; // guards all of it
    CONDITION_VARIABLE changed = CONDITION_VARIABLE_INIT;
    std::deque<Line> lines;
    std::size_t bytes = 0;      // of the texts in lines
    std::size_t dropped = 0;    // since the queue was full
    HANDLE gapOutput = nullptr; // of the first line dropped
    bool closed = false;

    void Drop(HANDLE output) {
        if (dropped++ == 0) {
            gapOutput = output;
        }
    }

    // The next line to write, once there is one. False at the end.
    bool Take(Line& line) {
        const std::lock_guard guard(lock);
        while (!closed && dropped == 0 && lines.empty()) {
            SleepConditionVariableSRW(&changed, &lock.section, INFINITE, 0);
        }
        if (!lines.empty()) {
            line = std::move(lines.front());
            lines.pop_front();
            bytes -= line.text.size();
            return true;
        }
        if (dropped == 0) {
            return false;
        }
        char text[80];
        std::snprintf(text, sizeof(text), "%s %zu lines dropped, since nobody read them\r\n",
                      Platform::TimePrefix().text, dropped);
        line = {gapOutput, {}};
        try {
            line.text = text;
        } catch (const std::bad_alloc&) { // this line is lost, not the next ones
        }
        dropped = 0;
        return true;
    }
};

OutputQueue::OutputQueue() : m_state(std::make_shared<State>()) {
    m_thread = std::make_shared<Thread>([state = m_state] {
        for (Line line; state->Take(line);) {
            WriteWhole(line);
        }
    });
    static_cast<void>(m_thread->Resume()); // without the thread every line beyond the queue is dropped
}

void OutputQueue::Write(void* output, std::string_view text) {
    const std::lock_guard guard(m_state->lock);
    if (m_state->closed) {
        return;
    }
    try {
        if (m_state->dropped > 0 || m_state->bytes + text.size() > Capacity) {
            m_state->Drop(output);
        } else {
            m_state->lines.push_back({output, std::string(text)});
            m_state->bytes += text.size();
        }
    } catch (const std::bad_alloc&) {
        m_state->Drop(output);
    }
    WakeConditionVariable(&m_state->changed);
}

bool OutputQueue::Close() {
    {
        const std::lock_guard guard(m_state->lock);
        m_state->closed = true;
        WakeConditionVariable(&m_state->changed);
    }
    return WaitForSingleObject(m_thread->GetHandle(), LongestWait) == WAIT_OBJECT_0;
}
