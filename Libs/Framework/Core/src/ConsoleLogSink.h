#pragma once

// Prints every log entry while it lives: entries of the error log to standard error, the others to standard
// output, byte for byte. A launcher that does not read its pipes holds nothing: see OutputQueue. Records of
// failed checks are printed in the same way. The destructor waits a second at most for lines that are not yet
// written; later ones are lost. One per process, on the main thread.
class ConsoleLogSink {
public:
    ConsoleLogSink();
    ~ConsoleLogSink();
    ConsoleLogSink(const ConsoleLogSink&) = delete; // it owns the process's outputs
    ConsoleLogSink& operator=(const ConsoleLogSink&) = delete;
};
