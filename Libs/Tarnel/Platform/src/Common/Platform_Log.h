#pragma once

#include <cstdint>
#include <string_view>

#include "Libs/Tarnel/Platform/src/Common/Platform_Printf.h"

namespace Platform {

// The three logs. A sink recognises them by content, not by pointer.
inline constexpr wchar_t InfoLog[] = L"KestrixInfo.log";
inline constexpr wchar_t ErrorLog[] = L"KestrixError.log";
inline constexpr wchar_t EngineLog[] = L"Engine.log";

// Receives every entry, on the thread that logs and outside all locks of the log: it must be thread-safe.
// The last argument is always 1.
using LogEventCallback = void (*)(const wchar_t* logName, const char* data, uint32_t length, int);

// Hands one finished entry to the installed callback, unchanged.
void LogWrite(const wchar_t* logName, const char* data, uint32_t length);

// The callback in force until another is installed: appends the bytes, unchanged, to the file of that name
// under the log root. A file is truncated when a run first writes to it. Without a root nothing is written.
void LogFileSink(const wchar_t* logName, const char* data, uint32_t length, int);

// Puts the time before the message, masks the message and writes the entry. By convention the format starts
// with one blank and has no line terminator.
void LogFormat(const wchar_t* logName, const char* format, ...) PLATFORM_PRINTF(2, 3);

// "[year-month-day hour:minute:second]\t" in local time, now, with a terminator.
struct TimePrefix {
    static constexpr int Length = 22;

    TimePrefix();

    char text[Length + 1];
};

// Replaces by "?", in place, what a terminal or a viewer would obey rather than show: control characters,
// line separators, marks of writing direction, and bytes that are not UTF-8. So no name can forge a line.
// Returns the new length, which is never greater.
std::size_t MaskControls(char* text, std::size_t length);

// A text from outside (from a header, the disk or the network), cut to 512 bytes at a whole character. Every
// such text goes into a log line through this:
//   PLATFORM_LOG(ErrorLog, " Failed to copy or compress attachment %s", ShownName(name).text);
struct ShownName {
    static constexpr std::size_t MaxLength = 512;

    explicit ShownName(std::string_view name);

    char text[MaxLength + 1];
};

} // namespace Platform

#define PLATFORM_LOG(logName, ...) ::Platform::LogFormat(logName, __VA_ARGS__)

extern "C" {
// Null or empty clears the root. Takes the first 258 characters, turns "\" into "/" and ends the root in "/".
void EXP_SetLogRoot(const wchar_t* path);

// Writes root and file name to output and returns the length without the terminator; without a root it
// returns 1 and writes nothing. The buffer must hold 260 characters more than the name.
uint32_t EXP_GetLogPath(wchar_t* output, const wchar_t* fileName);

// Null reinstalls the file sink.
void EXP_SetLogEventCallback(Platform::LogEventCallback callback);
Platform::LogEventCallback EXP_GetLogEventCallback();
}
