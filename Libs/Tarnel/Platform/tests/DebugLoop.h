#pragma once

#include <string>

// Starts application (null: the one that commandLine names) as the debuggee of this process, prints each text
// that it sends to its debugger and each break instruction that it reaches ("debugger: ..." lines), lets it
// go on, and gives its exit code; -1 when it can't be started. The start-up break of every debuggee is passed
// over.
int RunUnderDebugger(const wchar_t* application, std::wstring commandLine);
