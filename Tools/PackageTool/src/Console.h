#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <vector>

#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_Serializer.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_ByteSource.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_System.h"

// How the tool ends. If several apply, the highest counts; OnlyWarnings comes after Good.
enum class ExitCode : int {
    Good = 0,
    ProblemsFound = 1,    // in a package or in a configuration
    WrongUsage = 2,       // nothing was done
    NotReadOrWritten = 3, // a file or folder could not be read or written
    OnlyWarnings = 4      // a configuration that works, but hardly as it is meant
};
void Raise(ExitCode& code, ExitCode other);

// Standard input, output and error: UTF-8, line ends unchanged. One thread.
namespace Console {

// Held by main for the whole run. Failures that modules log go to standard error.
class Session {
public:
    Session();
    ~Session();
    Session(const Session&) = delete; // one console
    Session& operator=(const Session&) = delete;

private:
    std::unique_ptr<Platform::Receipt> m_console = Platform::UseUtf8Console();
};

void Print(std::string_view text);

// A reflected record on one line. Throws std::bad_alloc.
template <class T>
void PrintJson(const T& record) {
    JsonDocument document;
    std::string text;
    if (!JsonSerialization::WriteRecord(record, document) || !JsonSerialization::WriteText(document, text)) {
        throw std::bad_alloc(); // the only way to fail
    }
    Print(text + "\n");
}

// One line: the program's name, then text, made printable.
void PrintError(std::string_view text);
void PrintError(const std::string& file, const std::string& text); // file: text

// A file, or standard input for "-", to be read in pieces. Standard input goes through memory whole.
class Input {
public:
    // Null if it can't be read; reason then says why. Once.
    Platform::ByteSource* Open(const std::string& file, std::string& reason);

private:
    std::vector<uint8_t> m_standardInput;
    std::unique_ptr<Platform::ByteSource> m_source;
};

// The same, whole. False after a failure, which it prints to standard error.
bool ReadInput(const std::string& file, std::vector<uint8_t>& bytes);

bool IsFolder(const std::string& path);

// Adds the paths of all files in the folder and below it, relative to it, in the order of their names. Links
// are not followed. False if a folder could not be listed. Throws std::bad_alloc.
bool ListFiles(const std::string& folder, std::vector<std::string>& files);

// A path with "/" between its parts.
std::string WithSlashes(std::string path);

// The same text for all paths that Windows takes for one, as far as their letters are ASCII.
std::string Folded(const std::string& path);

// "1 file", "2 files"
std::string Count(uint64_t number, const char* what);

// For text from outside: what a terminal would obey rather than show becomes "?".
std::string Printable(std::string_view text);

} // namespace Console

// A bar on standard error for long work: shown after half a second if that is a terminal, and wiped at the
// end. One thread.
class Progress {
public:
    // total is in bytes.
    Progress(const std::string& what, uint64_t total);
    ~Progress();
    Progress(const Progress&) = delete; // one bar on one line
    Progress& operator=(const Progress&) = delete;

    void Advance(uint64_t bytes);

private:
    void Show(const std::string& line);

    using Clock = std::chrono::steady_clock;

    const std::string m_what;
    const uint64_t m_total;
    const bool m_isWanted;
    uint64_t m_done = 0;
    std::size_t m_shownLength = 0;
    Clock::time_point m_next;
};
