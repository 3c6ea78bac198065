#include "Libs/Framework/Core/src/ConsoleLogSink.h"

#include <windows.h>

#include <cstring>
#include <cwchar>

#include "Libs/Framework/Core/src/OutputQueue.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Assert.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Log.h"

namespace {

// Never destroyed: entries and failed checks may come until the process ends.
struct Outputs {
    OutputQueue queue;
    HANDLE standard = GetStdHandle(STD_OUTPUT_HANDLE); // taken before a console of our own replaces them
    HANDLE error = GetStdHandle(STD_ERROR_HANDLE);
};

Outputs& TheOutputs() {
    static auto& outputs = *new Outputs;
    return outputs;
}

// Text ends at its terminator, as it would with "%s".
void PrintEntry(const wchar_t* logName, const char* data, uint32_t length, int) {
    Outputs& outputs = TheOutputs();
    const bool isError = logName && std::wcscmp(logName, Platform::ErrorLog) == 0;
    outputs.queue.Write(isError ? outputs.error : outputs.standard, {data, strnlen(data, length)});
}

void PrintRecord(const char* record, std::size_t length) {
    TheOutputs().queue.Write(TheOutputs().error, {record, length});
}

} // namespace

ConsoleLogSink::ConsoleLogSink() {
    TheOutputs();
    EXP_SetLogEventCallback(&PrintEntry);
    Platform::SetAssertRecordOutput({&PrintRecord, [] { TheOutputs().queue.Close(); }});
}

ConsoleLogSink::~ConsoleLogSink() {
    TheOutputs().queue.Close();
}
