#pragma once

#include <cstdint>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "Libs/Tarnel/Platform/src/Common/Platform_Log.h"

namespace TestSupport {

// Collects the log entries of all threads while it lives. One at a time.
class LogCapture {
public:
    LogCapture() : m_previous(EXP_GetLogEventCallback()) {
        const std::lock_guard lock(s_lock);
        s_entries.clear();
        EXP_SetLogEventCallback(&Collect);
    }
    ~LogCapture() { EXP_SetLogEventCallback(m_previous); }
    LogCapture(const LogCapture&) = delete; // it owns the installed callback
    LogCapture& operator=(const LogCapture&) = delete;

    // The texts of one log, in their order.
    std::vector<std::string> Texts(std::wstring_view log) const {
        std::vector<std::string> texts;
        const std::lock_guard lock(s_lock);
        for (const Entry& entry : s_entries) {
            if (entry.log == log) {
                texts.push_back(entry.text);
            }
        }
        return texts;
    }
    std::vector<std::string> Infos() const { return Texts(Platform::InfoLog); }
    std::vector<std::string> Errors() const { return Texts(Platform::ErrorLog); }

private:
    struct Entry {
        std::wstring log;
        std::string text; // what follows the time prefix
    };

    static constexpr std::size_t PrefixLength = 22; // "[2026-01-31 23:59:59]\t"

    static void Collect(const wchar_t* logName, const char* data, uint32_t length, int) {
        const std::string_view entry(data, length);
        const std::lock_guard lock(s_lock);
        s_entries.push_back(
            {logName, std::string(entry.substr(entry.size() < PrefixLength ? 0 : PrefixLength))});
    }

    inline static std::mutex s_lock;
    inline static std::vector<Entry> s_entries;
    Platform::LogEventCallback m_previous;
};

} // namespace TestSupport
