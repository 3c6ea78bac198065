#pragma once

#include <cstdint>
#include <mutex>
#include <string>
#include <string_view>

#include "Libs/Tarnel/Platform/src/Common/Platform_IO.h"

// The log on the player's machine: one file, and beside it ".old" with what no longer fitted. Each line is
// with the system when Write returns, so both outlive a kill. A file that can't be written costs one line of
// the log. One per process; any thread.
class LogFile {
public:
    static constexpr uint64_t MaxSize = uint64_t{1} << 20; // bytes of either file

    // Never destroyed: lines may come until the process ends.
    static LogFile& OfProcess();

    // Starts at the end of the file, with the lines written until then. An empty path: no file is wanted.
    void Open(const std::string& path);

    void Write(std::string_view lines);

private:
    enum class State { Waiting, Open, Off };
    static constexpr std::size_t MostWaiting = std::size_t{64} << 10; // bytes

    Platform::SystemError OpenFile();
    Platform::SystemError Append(std::string_view lines);
    void TurnOff(Platform::SystemError error);

    std::mutex m_lock; // guards all of it
    State m_state = State::Waiting;
    std::string m_waiting; // until the configuration is read
    std::string m_path;
    Platform::File m_file;
    uint64_t m_size = 0;
};
