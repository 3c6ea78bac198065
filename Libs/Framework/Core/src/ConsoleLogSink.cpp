#include "Libs/Framework/Core/src/ConsoleLogSink.h"

#include <fcntl.h>
#include <io.h>

#include <cstdio>
#include <cstring>
#include <cwchar>

#include "Libs/Tarnel/Platform/src/Common/Platform_Log.h"

namespace {

// A program without a console may have no standard streams at all; then there is no descriptor to set.
void MakeBinary(std::FILE* stream) {
    const int descriptor = _fileno(stream);
    if (descriptor >= 0) {
        _setmode(descriptor, _O_BINARY);
    }
}

// One write an entry, not printf's byte by byte: entries of several threads stay whole. Text ends at its
// terminator, as it would with "%s".
void PrintEntry(const wchar_t* logName, const char* data, uint32_t length, int) {
    const bool isError = logName && std::wcscmp(logName, Platform::ErrorLog) == 0;
    std::FILE* stream = isError ? stderr : stdout;
    std::fwrite(data, 1, strnlen(data, length), stream);
    std::fflush(stream);
}

} // namespace

void InstallConsoleLogSink() {
    MakeBinary(stdout);
    MakeBinary(stderr);
    EXP_SetLogEventCallback(&PrintEntry);
}
