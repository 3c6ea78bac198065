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

#include "Libs/Framework/Core/src/PlatformHelpers.h"
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

// What a terminal obeys: the bytes of its UTF-8, read as one number.
constexpr struct {
    std::size_t length; // bytes
    uint32_t first;
    uint32_t last;
} Controls[] = {
    {1, 0x00, 0x1F},         {1, 0x7F, 0x7F},
    {2, 0xC280, 0xC29F},                              // the second set of control characters
    {2, 0xD89C, 0xD89C},                              // marks of writing direction from here on
    {3, 0xE2808E, 0xE2808F}, {3, 0xE280A8, 0xE280AE}, // two line ends among them
    {3, 0xE281A6, 0xE281A9},
};

// In bytes, of the control character at the start of text; 0 when that is none.
std::size_t ControlLength(std::string_view text) {
    uint32_t value = 0;
    for (std::size_t length = 1; length <= std::min<std::size_t>(text.size(), 3); ++length) {
        value = value << 8 | static_cast<unsigned char>(text[length - 1]);
        for (const auto& control : Controls) {
            if (control.length == length && value >= control.first && value <= control.last) {
                return length;
            }
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
    if (!result) {
        PlatformHelpers::FileStatus status;
        const bool isFolder = PlatformHelpers::PathExists(file) &&
                              PlatformHelpers::QueryFileStatus(file, status).Succeeded() && status.isFolder;
        reason = isFolder ? "This is a folder" : result.Text();
    }
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
