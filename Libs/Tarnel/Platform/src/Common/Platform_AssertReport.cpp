#include "Libs/Tarnel/Platform/src/Common/Platform_AssertReport.h"

#include <cstdio>

namespace Platform {

void FormatAssertReport(char* output, std::size_t size, const AssertFailure& failure, const LocalTime& time,
                        bool debuggerAttached) {
    const auto field = [](int value) { return static_cast<unsigned>(value); };
    if (failure.kind == AssertKind::Assert) {
        std::snprintf(output, size,
                      "Assert Failed\r\n\r\nFile:  %s\r\nLine:  %d\r\nExpression:  %s\r\nMessage:  %s\r\n"
                      "Time: %u/%u/%u  %u:%02u:%02u\r\n\r\n",
                      failure.sourceUnit, failure.line, failure.expression, failure.message,
                      field(time.month), field(time.day), field(time.year), field(time.hour),
                      field(time.minute), field(time.second));
    } else if (debuggerAttached) {
        std::snprintf(output, size,
                      "Data Error Occurred\r\n\r\nFile:  %s\r\nLine:  %d\r\nExpression:  %s\r\n"
                      "Message:\r\n\r\n\t%s\r\n\r\n",
                      failure.sourceUnit, failure.line, failure.expression, failure.message);
    } else {
        std::snprintf(output, size, "%s", failure.message);
    }
}

} // namespace Platform
