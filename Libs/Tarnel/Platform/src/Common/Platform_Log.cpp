#include "Libs/Tarnel/Platform/src/Common/Platform_Log.h"

#include <algorithm>
#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <mutex>
#include <new>
#include <string>

#include "Libs/Tarnel/Platform/src/Common/Platform_Assert.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_IO.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Locks.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Memory.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_StringCommon.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_System.h"
#include "Libs/Tarnel/Types/src/Types_FNV1a.h"

namespace Platform {
namespace {

constexpr int MaxLogFiles = 32;
constexpr std::size_t MaxRootLength = 259; // 258 characters of the given path and a "/"
constexpr std::size_t StackEntryLength = 279;

// One log's open file. Slots are filled in order, under g_lock, and never emptied; the files stay open until
// the process ends.
struct LogSlot {
    // 0 while the slot is free. Set last, so that a thread that finds the key finds an open file.
    std::atomic<uint32_t> nameKey = 0;
    NativeHandle file = NoHandle;
    std::atomic<uint64_t> nextOffset = 0;
};

struct LogRoot {
    wchar_t path[MaxRootLength + 1] = {};
    std::size_t length = 0;
};

constinit SpinLock g_lock; // guards g_callback, g_slotCount and the filling of slots
constinit LogEventCallback g_callback = &LogFileSink;
constinit LogSlot g_slots[MaxLogFiles];
constinit int g_slotCount = 0;

constinit SpinLock g_rootLock; // guards g_root
constinit LogRoot g_root;

wchar_t WithForwardSlash(wchar_t c) {
    return c == L'\\' ? L'/' : c;
}

LogRoot MakeRoot(const wchar_t* path) {
    LogRoot root;
    while (path && path[root.length] && root.length < MaxRootLength - 1) {
        root.path[root.length] = WithForwardSlash(path[root.length]);
        ++root.length;
    }
    if (root.length > 0 && root.path[root.length - 1] != L'/') {
        root.path[root.length++] = L'/';
    }
    return root;
}

LogRoot CurrentRoot() {
    const std::lock_guard guard(g_rootLock);
    return g_root;
}

uint32_t KeyOf(const wchar_t* logName) {
    return std::max(Types::FNV1aWide(logName), 1u); // 0 is the free slot
}

LogSlot* FindSlot(uint32_t key) {
    const auto slot = std::ranges::find_if(
        g_slots, [key](const LogSlot& used) { return used.nameKey.load(std::memory_order_acquire) == key; });
    return slot == std::end(g_slots) ? nullptr : slot;
}

SystemError OpenLogFile(const wchar_t* logName, NativeHandle& handle) {
    try {
        std::wstring path(MaxRootLength + std::wcslen(logName) + 1, L'\0');
        if (EXP_GetLogPath(path.data(), logName) == 1) { // no root
            path.clear();
        }
        File file;
        const SystemError error =
            file.Open(std::wstring_view(path.c_str()), FileWrite | FileCreateAndTruncate);
        handle = file.Release();
        return error;
    } catch (const std::bad_alloc&) {
        return NoMemory;
    }
}

LogSlot* FillSlot(const wchar_t* logName, uint32_t key, SystemError& error, bool& isTableFull) {
    const std::lock_guard guard(g_lock);
    if (LogSlot* const slot = FindSlot(key)) { // another thread was quicker
        return slot;
    }
    isTableFull = g_slotCount >= MaxLogFiles;
    if (isTableFull) {
        return nullptr;
    }
    LogSlot& slot = g_slots[g_slotCount];
    error = OpenLogFile(logName, slot.file);
    if (error != NoError) {
        return nullptr;
    }
    ++g_slotCount;
    slot.nameKey.store(key, std::memory_order_release);
    return &slot;
}

// Failures are reported after the lock is released: an assertion handler may log.
LogSlot* OpenSlot(const wchar_t* logName, uint32_t key) {
    SystemError error = NoError;
    bool isTableFull = false;
    LogSlot* const slot = FillSlot(logName, key, error, isTableFull);
    PLATFORM_ASSERT_TEXT_MESSAGE(!isTableFull, "false", "Exceeded maximum log file count of %d", MaxLogFiles);
    ReportOpening(error);
    return slot;
}

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
    const TimePrefix prefix;
    EntryBuffer entry(TimePrefix::Length + messageLength);
    std::memcpy(entry.Data(), prefix.text, TimePrefix::Length);
    char* const message = entry.Data() + TimePrefix::Length;
    const std::size_t room = entry.Capacity() - TimePrefix::Length;
    const auto written =
        static_cast<std::size_t>(std::max(std::vsnprintf(message, room, format, arguments), 0));
    const std::size_t length = MaskControls(message, std::min(written, room - 1));
    message[length] = 0;
    LogWrite(logName, entry.Data(), static_cast<uint32_t>(TimePrefix::Length + length));
}

bool IsObeyedRatherThanShown(char32_t c) {
    return c < 0x20 || (c >= 0x7F && c <= 0x9F) || c == 0x061C || c == 0x200E || c == 0x200F ||
           (c >= 0x2028 && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069);
}

} // namespace

void LogWrite(const wchar_t* logName, const char* data, uint32_t length) {
    EXP_GetLogEventCallback()(logName, data, length, 1);
}

void LogFileSink(const wchar_t* logName, const char* data, uint32_t length, int) {
    if (!logName) {
        return;
    }
    const uint32_t key = KeyOf(logName);
    LogSlot* slot = FindSlot(key);
    if (!slot) {
        slot = OpenSlot(logName, key);
    }
    if (slot) { // writers reserve disjoint ranges first and then write without a lock
        const uint64_t offset = slot->nextOffset.fetch_add(length);
        // An entry that can't be written is lost.
        static_cast<void>(WriteFileAt(slot->file, offset, data, length));
    }
}

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
        LogFormat(logName, "%s", format); // the arguments can't be formatted; the bare text says where
    }
    va_end(arguments);
}

// Each field is kept within its width, so that the prefix has one length whatever the clock says.
TimePrefix::TimePrefix() {
    const LocalTime now = CurrentLocalTime();
    const auto field = [](int value, int max) { return std::clamp(value, 0, max); };
    std::snprintf(text, sizeof(text), "[%04d-%02d-%02d %02d:%02d:%02d]\t", field(now.year, 9999),
                  field(now.month, 99), field(now.day, 99), field(now.hour, 99), field(now.minute, 99),
                  field(now.second, 99));
}

std::size_t MaskControls(char* text, std::size_t length) {
    std::size_t kept = 0;
    for (std::size_t at = 0; at < length;) {
        char32_t character = 0;
        std::size_t bytes = 1;
        const bool isText = DecodeUtf8({text + at, length - at}, character, bytes) == ConvertString_Done;
        if (isText && !IsObeyedRatherThanShown(character)) {
            std::memmove(text + kept, text + at, bytes);
            kept += bytes;
        } else {
            text[kept++] = '?';
        }
        at += bytes;
    }
    return kept;
}

ShownName::ShownName(std::string_view name) {
    std::size_t length = std::min(name.size(), MaxLength);
    if (length < name.size()) {
        while (length > 0 && (static_cast<unsigned char>(name[length]) & 0xC0) == 0x80) {
            --length; // inside a character
        }
    }
    std::memcpy(text, name.data(), length);
    text[length] = 0;
}

} // namespace Platform

void EXP_SetLogRoot(const wchar_t* path) {
    const Platform::LogRoot root = Platform::MakeRoot(path);
    const std::lock_guard guard(Platform::g_rootLock);
    Platform::g_root = root;
}

uint32_t EXP_GetLogPath(wchar_t* output, const wchar_t* fileName) {
    const Platform::LogRoot root = Platform::CurrentRoot();
    if (root.length == 0) {
        return 1;
    }
    const wchar_t* name = fileName ? fileName : L"";
    if (*name == L'/' || *name == L'\\') {
        ++name;
    }
    wchar_t* end = std::copy_n(root.path, root.length, output);
    end = std::transform(name, name + std::wcslen(name), end, Platform::WithForwardSlash);
    *end = 0;
    return static_cast<uint32_t>(end - output);
}

void EXP_SetLogEventCallback(Platform::LogEventCallback callback) {
    const std::lock_guard guard(Platform::g_lock);
    Platform::g_callback = callback ? callback : &Platform::LogFileSink;
}

Platform::LogEventCallback EXP_GetLogEventCallback() {
    const std::lock_guard guard(Platform::g_lock);
    return Platform::g_callback;
}
