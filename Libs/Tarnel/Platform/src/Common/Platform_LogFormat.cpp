#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "Libs/Tarnel/Platform/src/Common/Platform_LocalTime.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Log.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Memory.h"

namespace Platform {
namespace {

// Prefix and message of a short entry are built in one buffer on the stack.
constexpr std::size_t StackEntryLength = 279;

// The entry's memory: on the stack while it fits, else a block of the short-lived heap. Without memory a long
// entry is cut to the stack buffer rather than lost.
class EntryBuffer {
public:
    explicit EntryBuffer(std::size_t length) {
        if (length > StackEntryLength) {
            m_block = static_cast<char*>(ShortLivedAllocate(length + 1));
        }
        m_capacity = m_block ? length + 1 : sizeof(m_stack);
    }
    ~EntryBuffer() {
        if (m_block) {
            ShortLivedFree(m_block);
        }
    }
    EntryBuffer(const EntryBuffer&) = delete; // owns its block
    EntryBuffer& operator=(const EntryBuffer&) = delete;

    char* Data() { return m_block ? m_block : m_stack; }
    std::size_t Capacity() const { return m_capacity; }

private:
    char* m_block = nullptr;
    std::size_t m_capacity = 0;
    char m_stack[StackEntryLength + 1];
};

void WriteEntry(const wchar_t* logName, std::size_t messageLength, const char* format, va_list arguments)
    PLATFORM_PRINTF(3, 0);

void WriteEntry(const wchar_t* logName, std::size_t messageLength, const char* format, va_list arguments) {
    const TimePrefix prefix = FormatTimePrefix(CurrentLocalTime());
    EntryBuffer entry(TimePrefix::Length + messageLength);
    std::memcpy(entry.Data(), prefix.text, TimePrefix::Length);
    const std::size_t room = entry.Capacity() - TimePrefix::Length;
    const int written = std::vsnprintf(entry.Data() + TimePrefix::Length, room, format, arguments);
    const std::size_t kept = std::min(static_cast<std::size_t>(std::max(written, 0)), room - 1);
    LogWrite(logName, entry.Data(), static_cast<uint32_t>(TimePrefix::Length + kept));
}

} // namespace

void LogFormat(const wchar_t* logName, const char* format, ...) {
    // NOLINTBEGIN(cppcoreguidelines-init-variables): va_start and va_copy do it
    va_list arguments;
    va_start(arguments, format);
    va_list measured;
    va_copy(measured, arguments);
    // NOLINTEND(cppcoreguidelines-init-variables)
    const int length = std::vsnprintf(nullptr, 0, format, measured);
    va_end(measured);
    if (length >= 0) {
        WriteEntry(logName, static_cast<std::size_t>(length), format, arguments);
    } else {
        LogFormat(logName, "%s", format); // arguments that can't be formatted: the bare text says where
    }
    va_end(arguments);
}

} // namespace Platform
