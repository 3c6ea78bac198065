#include "Tools/PackageTool/src/Console.h"

#include <algorithm>
#include <cstdio>
#include <new>
#include <utility>

#include "Libs/Framework/Core/src/PlatformHelpers.h"
#include "Libs/Processes/Core/src/FolderPath.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Log.h"
#include "Libs/Tarnel/String/src/String_Ascii.h"

void Raise(ExitCode& code, ExitCode other) {
    if (code == ExitCode::Good ||
        (other != ExitCode::OnlyWarnings && (code == ExitCode::OnlyWarnings || other > code))) {
        code = other;
    }
}

namespace Console {

namespace {

// Prints failures without their time; drops lines of progress.
void PrintLogEntry(const wchar_t* logName, const char* data, uint32_t length, int) {
    if (std::wstring_view(logName) == Platform::InfoLog) {
        return;
    }
    std::string_view text(data, length);
    const std::size_t start = text.find_first_not_of(" \t", text.find('\t') + 1);
    PrintError(start == std::string_view::npos ? text : text.substr(start));
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
    }
    return reason.empty();
} catch (const std::exception&) {
    bytes = {};
    reason = "Standard input does not fit in memory";
    return false;
}

} // namespace

Session::Session() {
    EXP_SetLogEventCallback(&PrintLogEntry);
}

Session::~Session() {
    std::fflush(stdout); // while the console still shows UTF-8
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

Platform::ByteSource* Input::Open(const std::string& file, std::string& reason) {
    reason.clear();
    if (file == "-") {
        if (!ReadStandardInput(m_standardInput, reason)) {
            return nullptr;
        }
        m_source = std::make_unique<Platform::MemorySource>(m_standardInput);
        return m_source.get();
    }
    Platform::File opened;
    if (opened.Open(file, Platform::FileRead, Platform::ShareAll) != Platform::NoError) {
        reason = IsFolder(file) ? "This is a folder" : "Failed to open input file";
    } else {
        m_source = std::make_unique<Platform::FileSource>(std::move(opened));
    }
    return m_source.get();
}

bool ReadInput(const std::string& file, std::vector<uint8_t>& bytes) {
    Input input;
    std::string reason;
    if (Platform::ByteSource* const source = input.Open(file, reason)) {
        bytes.resize(static_cast<std::size_t>(source->GetSize()));
        reason = source->Read(0, bytes) ? "" : Platform::ReadFailure;
    }
    if (!reason.empty()) {
        PrintError(file, reason);
    }
    return reason.empty();
}

bool IsFolder(const std::string& path) {
    PlatformHelpers::FileStatus status;
    return PlatformHelpers::PathExists(path) && PlatformHelpers::QueryFileStatus(path, status).Succeeded() &&
           status.isFolder;
}

bool ListFiles(const std::string& folder, std::vector<std::string>& files) {
    std::vector<std::string> open = {""}; // folders, relative, with a separator at the end
    bool isWhole = true;
    while (!open.empty()) {
        const std::string below = std::move(open.back());
        open.pop_back();
        const std::string path = FolderPath::Join(folder, below); // ends in a separator
        const auto add = [&](const PlatformHelpers::PathInfo& entry, bool&) {
            if (!entry.IsFolder()) {
                files.push_back(below + entry.name);
            } else if (!entry.IsLink()) {
                open.push_back(below + entry.name + FolderPath::Separator);
            }
            return Platform::Success;
        };
        isWhole = PlatformHelpers::EnumerateFolder(
                      path, PlatformHelpers::EnumerateFiles | PlatformHelpers::EnumerateFolders, add)
                      .Succeeded() &&
                  isWhole;
    }
    std::ranges::sort(files);
    return isWhole;
}

std::string WithSlashes(std::string path) {
    std::ranges::replace(path, '\\', '/');
    return path;
}

std::string Folded(const std::string& path) {
    return String::LowerAscii(WithSlashes(path));
}

std::string Count(uint64_t number, const char* what) {
    return std::to_string(number) + " " + what + (number == 1 ? "" : "s");
}

std::string Printable(std::string_view text) {
    std::string printable(text);
    printable.resize(Platform::MaskControls(printable.data(), printable.size()));
    return printable;
}

} // namespace Console

Progress::Progress(const std::string& what, uint64_t total)
    : m_what(Console::Printable(what.substr(what.find_last_of("\\/") + 1))),
      m_total(std::max<uint64_t>(total, 1)), m_isWanted(Platform::IsErrorTerminal()),
      m_next(Clock::now() + std::chrono::milliseconds(500)) {}

Progress::~Progress() {
    if (m_shownLength > 0) {
        Show("");
        Show(""); // back to the line's start
    }
}

void Progress::Advance(uint64_t bytes) {
    m_done += bytes;
    if (!m_isWanted || Clock::now() < m_next) {
        return;
    }
    m_next = Clock::now() + std::chrono::milliseconds(100);
    constexpr unsigned Width = 30;
    const double part = std::min(1.0, static_cast<double>(m_done) / static_cast<double>(m_total));
    std::string bar(static_cast<std::size_t>(part * Width), '#');
    bar.resize(Width, '.');
    Show(m_what + " [" + bar + "] " + std::to_string(static_cast<int>(part * 100)) + " %");
}

// Blanks wipe the rest of the longer line before: not every console knows an escape sequence for that.
void Progress::Show(const std::string& line) {
    const std::string blanks(m_shownLength - std::min(m_shownLength, line.size()), ' ');
    const std::string text = "\r" + line + blanks;
    m_shownLength = line.size();
    std::fwrite(text.data(), 1, text.size(), stderr);
    std::fflush(stderr);
}
