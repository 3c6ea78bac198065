#pragma once

#include <cstddef>

#include "Libs/Tarnel/Platform/src/Common/Platform_Assert.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_LocalTime.h"

namespace Platform {

// One failed check. No text is null.
struct AssertFailure {
    AssertKind kind;
    const char* sourceUnit;
    int line;
    const char* expression;
    const char* message;
};

// Writes the report that the dialog and the debugger show, cut to size with its terminator.
void FormatAssertReport(char* output, std::size_t size, const AssertFailure& failure, const LocalTime& time,
                        bool debuggerAttached);

} // namespace Platform
