#pragma once

#include <cstddef>
#include <memory>
#include <string_view>

class Thread;

// Writes lines to pipes, files and consoles without ever waiting for the reader: a thread of its own writes,
// in order, from a queue of at most 1 MiB. Once the queue is full, every line is dropped until all of the
// queue is written. Then one line says how many were dropped. Any thread may write. It neither logs nor fails
// a check, so the log and the checks may use it.
class OutputQueue {
public:
    static constexpr std::size_t Capacity = std::size_t{1} << 20;

    OutputQueue();
    ~OutputQueue() { Close(); }
    OutputQueue(const OutputQueue&) = delete; // it owns a thread
    OutputQueue& operator=(const OutputQueue&) = delete;

    // Hands text, one line or more, to the output, a HANDLE that must stay open until Close. A line without
    // memory is dropped too.
    void Write(void* output, std::string_view text);

    // Takes no more lines and waits, at most one second, until all are written. False if some are not: the
    // thread then stays in its write, until the process ends or the reader comes back.
    bool Close();

private:
    struct State;
    std::shared_ptr<State> m_state; // the thread holds it too
    std::shared_ptr<Thread> m_thread;
};
