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
    PrintError(Printable(start == std::string_view::npos ? text : text.substr(start)));
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
    const std::string line = "PackageTool: " + std::string(text) + "\n";
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
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        const auto next = static_cast<unsigned char>(i + 1 < text.size() ? text[i + 1] : 0);
        const bool isSecondSet = byte == 0xC2 && next >= 0x80 && next < 0xA0;
        if (isSecondSet) {
            ++i;
        }
        printable += isSecondSet || byte < 0x20 || byte == 0x7F ? '?' : text[i];
    }
    return printable;
}

} // namespace Console
