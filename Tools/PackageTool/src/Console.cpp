#include "Tools/PackageTool/src/Console.h"

#include <algorithm>
#include <cstdio>
#include <new>

#if defined(_WIN32)
#include <fcntl.h>
#include <io.h>
#include <windows.h>
#else
#include <unistd.h>
#endif

#include "Libs/Tarnel/Platform/src/Common/Platform_FileBytes.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Log.h"

void Raise(ExitCode& code, ExitCode other) {
    code = std::max(code, other);
}

namespace Console {

namespace {

// Progress lines are no news here; failures are, without their time.
void PrintLogEntry(const wchar_t* logName, const char* data, uint32_t length, int) {
    if (std::wstring_view(logName) == Platform::InfoLog) {
        return;
    }
    std::string_view text(data, length);
    const std::size_t start = text.find_first_not_of(" \t", text.find('\t') + 1);
    PrintError(start == std::string_view::npos ? text : text.substr(start));
}

// What a terminal obeys, as UTF-8.
constexpr struct {
    std::string_view first;
    std::string_view last;
} Controls[] = {
    {std::string_view("\0", 1), "\x1F"},
    {"\x7F", "\x7F"},
    {"\xC2\x80", "\xC2\x9F"}, // the second set of control characters
    {"\xD8\x9C", "\xD8\x9C"}, // marks of writing direction from here on
    {"\xE2\x80\x8E", "\xE2\x80\x8F"},
    {"\xE2\x80\xA8", "\xE2\x80\xAE"}, // two line ends among them
    {"\xE2\x81\xA6", "\xE2\x81\xA9"},
};

// In bytes, of the control character at the start of text; 0 when that is none.
std::size_t ControlLength(std::string_view text) {
    for (const auto& [first, last] : Controls) {
        const std::string_view start = text.substr(0, first.size());
        if (start.size() == first.size() && start >= first && start <= last) {
            return first.size();
        }
    }
    return 0;
}

bool ReadStandardInput(std::vector<uint8_t>& bytes, std::string& reason) try {
    constexpr std::size_t Piece = 1 << 16;
    std::size_t read = 0;
    do {
        bytes.resize(bytes.size() + Piece);
        read = std::fread(bytes.data() + bytes.size() - Piece, 1, Piece, stdin);
        bytes.resize(bytes.size() - Piece + read);
    } while (read > 0);
    if (std::ferror(stdin) != 0) {
        reason = "Failed to read standard input";
    } else if (bytes.empty()) {
        reason = "Standard input is empty";
    }
    return reason.empty();
} catch (const std::exception&) {
    bytes = {};
    reason = "Standard input does not fit in memory";
    return false;
}

} // namespace

void Prepare() {
    EXP_SetLogEventCallback(&PrintLogEntry);
#if defined(_WIN32)
    for (std::FILE* const stream : {stdin, stdout, stderr}) {
        static_cast<void>(_setmode(_fileno(stream), _O_BINARY));
    }
    SetConsoleOutputCP(CP_UTF8); // fails where there is no console, and is not needed there
#endif
}

void Print(std::string_view text) {
    std::fwrite(text.data(), 1, text.size(), stdout);
}

void PrintError(std::string_view text) {
    const std::string line = "PackageTool: " + Printable(text) + "\n";
    std::fwrite(line.data(), 1, line.size(), stderr);
}

void PrintError(const std::string& file, const std::string& text) {
    PrintError(file + ": " + text);
}

bool IsErrorTerminal() {
#if defined(_WIN32)
    return _isatty(_fileno(stderr)) != 0;
#else
    return isatty(STDERR_FILENO) == 1;
#endif
}

void PrintProgress(std::string_view text) {
    std::fwrite(text.data(), 1, text.size(), stderr);
    std::fflush(stderr);
}

bool ReadInput(const std::string& file, std::vector<uint8_t>& bytes, std::string& reason) {
    bytes.clear();
    reason.clear();
    if (file == "-") {
        return ReadStandardInput(bytes, reason);
    }
    const ResultCode result = Platform::ReadFileBytes(file, bytes);
    reason = result ? "" : result.Text();
    return result.Succeeded();
}

std::string Printable(std::string_view text) {
    std::string printable;
    while (!text.empty()) {
        const std::size_t control = ControlLength(text);
        printable += control > 0 ? '?' : text[0];
        text.remove_prefix(control > 0 ? control : 1);
    }
    return printable;
}

} // namespace Console
