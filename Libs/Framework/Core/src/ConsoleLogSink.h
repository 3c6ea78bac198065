#pragma once

// From here on every log entry is printed: to standard error what goes to the error log, to standard output
// the rest, byte for byte and at once, so that whoever started the agent with pipes reads it as it happens.
void InstallConsoleLogSink();
