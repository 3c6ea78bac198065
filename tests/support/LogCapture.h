#pragma once

#include <algorithm>
#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "Libs/Tarnel/Platform/src/Common/Platform_Log.h"

namespace TestSupport {

// Collects the log entries of all threads while it lives. One at a time.
class LogCapture {
public:
    LogCapture() : m_previous(EXP_GetLogEventCallback()) {
        const std::lock_guard lock(s_lock);
        s_texts.clear();
        EXP_SetLogEventCallback(&Collect);
    }
    ~LogCapture() { EXP_SetLogEventCallback(m_previous); }
    LogCapture(const LogCapture&) = delete; // it owns the installed callback
    LogCapture& operator=(const LogCapture&) = delete;

    // What follows the times in one log, in its order.
    std::vector<std::string> Texts(const std::wstring& log) const {
        const std::lock_guard lock(s_lock);
        return s_texts[log];
    }
    std::vector<std::string> Errors() const { return Texts(Platform::ErrorLog); }

private:
    static void Collect(const wchar_t* logName, const char* data, uint32_t length, int) {
        const uint32_t start = std::min<uint32_t>(Platform::TimePrefix::Length, length);
        const std::lock_guard lock(s_lock);
        s_texts[logName].emplace_back(data + start, length - start);
    }

    inline static std::mutex s_lock;
    inline static std::map<std::wstring, std::vector<std::string>> s_texts; // by log
    Platform::LogEventCallback m_previous;
};

} // namespace TestSupport
