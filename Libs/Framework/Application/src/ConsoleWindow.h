#pragma once

#include <functional>
#include <memory>
#include <string_view>

#include "Libs/Framework/Core/src/OutputQueue.h"

// The program's console window, which shows UTF-8 text. There is one per process. Ctrl+C, Ctrl+Break and
// closing the window call the stop request, on a thread of the system, instead of ending the program in the
// middle of its work; after a close the system allows a few seconds. While the user selects text in the
// window, new text waits in an OutputQueue.
class ConsoleWindow {
public:
    // Empty if the system refuses a console, which is logged.
    static std::unique_ptr<ConsoleWindow> Open(std::function<void()> stopRequest);

    // Afterwards the stop request is neither running nor called again.
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
