#include "Libs/Framework/Core/src/LogFile.h"

#include <exception>
#include <utility>

#include <windows.h>

#include "Libs/Tarnel/Platform/src/Common/Platform_Log.h"

LogFile& LogFile::OfProcess() {
    static auto& file = *new LogFile;
    return file;
}

void LogFile::Open(const std::string& path) {
    Platform::SystemError error = Platform::NoError;
    {
        const std::lock_guard guard(m_lock);
        const std::string waiting = std::exchange(m_waiting, {});
        m_path = path;
        m_state = path.empty() ? State::Off : State::Open;
        if (m_state == State::Open) {
            error = OpenFile();
            error = error == Platform::NoError ? Append(waiting) : error;
        }
    }
    TurnOff(error);
}

void LogFile::Write(std::string_view lines) {
    Platform::SystemError error = Platform::NoError;
    try {
        const std::lock_guard guard(m_lock);
        if (m_state == State::Open) {
            error = Append(lines);
        } else if (m_state == State::Waiting && m_waiting.size() + lines.size() <= MostWaiting) {
            m_waiting += lines;
        }
    } catch (const std::exception&) {
        error = Platform::NoMemory;
    }
    TurnOff(error);
}

Platform::SystemError LogFile::OpenFile() {
    Platform::File file;
    const Platform::SystemError error = Platform::OpenOrCreate(file, m_path, Platform::FileWrite);
    m_file = std::move(file);
    m_size = m_file.GetSize();
    return error;
}

// At the file's end, wherever another copy of the program has moved that.
Platform::SystemError LogFile::Append(std::string_view lines) {
    if (m_size > 0 && m_size + lines.size() > MaxSize) {
        m_file = {};
        Platform::SystemError error = Platform::RenameFile(m_path, m_path + ".old");
        error = error == Platform::NoError ? OpenFile() : error;
        if (error != Platform::NoError) {
            return error;
        }
    }
    OVERLAPPED end = {};
    end.Offset = end.OffsetHigh = 0xFFFFFFFF;
    DWORD written = 0;
    if (!WriteFile(m_file.Get(), lines.data(), static_cast<DWORD>(lines.size()), &written, &end)) {
        return GetLastError();
    }
    m_size += written;
    return written == lines.size() ? Platform::NoError : ERROR_DISK_FULL;
}

// Outside the lock: the line comes back to Write.
void LogFile::TurnOff(Platform::SystemError error) {
    if (error == Platform::NoError) {
        return;
    }
    {
        const std::lock_guard guard(m_lock);
        if (std::exchange(m_state, State::Off) == State::Off) {
            return;
        }
    }
    PLATFORM_LOG(Platform::ErrorLog, " Failed to write the log file \"%s\". Error=%u",
                 Platform::ShownName(m_path).text, static_cast<unsigned>(error));
}
