#pragma once

// While it lives every log entry is printed: to standard error what goes to the error log, to standard output
// the rest, byte for byte, so that whoever started the agent with pipes reads it as it happens. A reader who
// does not read holds nobody: see OutputQueue. Records of failed checks take the same way. Its end waits a
// second at most for the lines that are not yet written; later ones are lost. One a process, on the main
// thread.
class ConsoleLogSink {
public:
    ConsoleLogSink();
    ~ConsoleLogSink();
    ConsoleLogSink(const ConsoleLogSink&) = delete; // it stands for the process's outputs
    ConsoleLogSink& operator=(const ConsoleLogSink&) = delete;
};
