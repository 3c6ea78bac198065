#pragma once

#include <functional>
#include <memory>
#include <string_view>

#include "Libs/Framework/Core/src/OutputQueue.h"

// The program's console window, which shows UTF-8 text. There is one a process. Ctrl+C, Ctrl+Break and
// closing the window call the stop request, on a thread of the system's, instead of ending the program in the
// middle of its work; after a close the system grants a few seconds. Text that the window does not take,
// because the user is selecting some, waits in an OutputQueue.
class ConsoleWindow {
public:
    // Empty when the system refuses a console, which is logged.
    static std::unique_ptr<ConsoleWindow> Open(std::function<void()> stopRequest);

    // Once this returns the stop request is not running and is not called any more.
    ~ConsoleWindow();
    ConsoleWindow(const ConsoleWindow&) = delete; // it owns the process's console
    ConsoleWindow& operator=(const ConsoleWindow&) = delete;

    // Any thread.
    void Write(std::string_view text) { m_queue.Write(m_output, text); }

private:
    explicit ConsoleWindow(std::function<void()> stopRequest);

    void* m_output;
    OutputQueue m_queue;
};
