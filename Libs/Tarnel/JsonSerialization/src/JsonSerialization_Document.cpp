#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_Document.h"

#include "Libs/Tarnel/Platform/src/Common/Platform_Assert.h"

namespace JsonSerialization {

void ReportMisuse(const char* expression, const char* file, int line, bool* ignoreAlways) {
    if (!*ignoreAlways &&
        Platform::AssertFailed(expression, nullptr, file, line, ignoreAlways, Platform::AssertKind::Assert)) {
        Platform::BreakIntoDebugger();
    }
}

} // namespace JsonSerialization
