#pragma once

#include "Libs/Tarnel/Platform/src/Common/Platform_IO.h"

// Opening in two steps, for callers that hold a lock inside which no check may be reported.
namespace Platform {

enum class OpenOutcome { Done, AlreadyOpen, NoAccess, Refused, NoSize };

[[nodiscard]] OpenOutcome TryOpenFile(File& file, const wchar_t* path);

// Raises the assertion that belongs to the outcome, if any.
void ReportOpenOutcome(OpenOutcome outcome);

} // namespace Platform
