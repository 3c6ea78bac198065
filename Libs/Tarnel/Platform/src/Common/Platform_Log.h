#pragma once

#include <cstdint>

#include "Libs/Tarnel/Platform/src/Common/Platform_Printf.h"

namespace Platform {

// The three logs. A sink tells them apart by content, not by pointer.
inline constexpr wchar_t InfoLog[] = L"KestrixInfo.log";
inline constexpr wchar_t ErrorLog[] = L"KestrixError.log";
inline constexpr wchar_t EngineLog[] = L"Engine.log";

// Receives every entry, on the thread that logs and outside all locks of the log: it must be thread-safe.
// The last argument is always 1.
using LogEventCallback = void (*)(const wchar_t* logName, const char* data, uint32_t length, int);

// Hands one finished entry to the installed callback.
void LogWrite(const wchar_t* logName, const char* data, uint32_t length);

// The sink in force until another is installed: appends the bytes, just as they are, to the file of that name
// under the log root. A file is truncated when a run first writes to it. Without a root nothing is written.
void LogFileSink(const wchar_t* logName, const char* data, uint32_t length, int);

// Puts "[year-month-day hour:minute:second]\t" in local time before the message and writes the entry. By
// convention the format starts with one blank and carries no line terminator.
void LogFormat(const wchar_t* logName, const char* format, ...) PLATFORM_PRINTF(2, 3);

} // namespace Platform

#define PLATFORM_LOG(logName, ...) ::Platform::LogFormat(logName, __VA_ARGS__)

extern "C" {
// Null or empty clears the root. Takes the first 258 characters, turns "\" into "/" and ends the root in "/".
void EXP_SetLogRoot(const wchar_t* path);

// Writes root and file name to output and returns the length without the terminator; without a root it
// returns 1 and writes nothing. The caller's buffer must hold root, name and terminator (260 more than the
// name is enough).
uint32_t EXP_GetLogPath(wchar_t* output, const wchar_t* fileName);

// Null reinstalls the file sink.
void EXP_SetLogEventCallback(Platform::LogEventCallback callback);
Platform::LogEventCallback EXP_GetLogEventCallback();
}
