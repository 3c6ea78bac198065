#include "Libs/Tarnel/Platform/src/Common/Platform_FileBytes.h"

#include <exception>

namespace Platform {
namespace {

// Shortens bytes to what was there: a file may shrink after its size was asked. What it grew by is left out.
ReadOutcome ReadOpenFile(File& file, std::vector<uint8_t>& bytes) {
    if (file.GetSize() > bytes.max_size()) {
        return ReadOutcome::ReadFailed;
    }
    bytes.resize(static_cast<std::size_t>(file.GetSize()));
    std::size_t count = 0;
    if (file.Read(0, bytes, count) != NoError) {
        return ReadOutcome::ReadFailed;
    }
    bytes.resize(count);
    return bytes.empty() ? ReadOutcome::Empty : ReadOutcome::Done;
}

ResultCode WithGenericText(ReadOutcome outcome) {
    switch (outcome) {
    case ReadOutcome::Done:
        return Success;
    case ReadOutcome::OpenFailed:
        return "Failed to open input file";
    case ReadOutcome::Empty:
        return "Failed to read zero length input file!";
    default:
        return "Failed to read file bytes";
    }
}

} // namespace

ReadOutcome ReadWholeFile(File& file, std::vector<uint8_t>& bytes) noexcept {
    ReadOutcome outcome = ReadOutcome::ReadFailed;
    try {
        outcome = ReadOpenFile(file, bytes);
    } catch (const std::exception&) { // the file does not fit in memory
        outcome = ReadOutcome::ReadFailed;
    }
    if (outcome != ReadOutcome::Done) {
        bytes.clear();
    }
    return outcome;
}

ReadOutcome ReadWholeFile(const SystemPath& path, std::vector<uint8_t>& bytes) {
    bytes.clear();
    File file;
    return file.Open(path, FileRead, ShareAll, Patience::WhileHeld) == NoError ? ReadWholeFile(file, bytes)
                                                                               : ReadOutcome::OpenFailed;
}

ResultCode ReadFileBytes(const SystemPath& path, std::vector<uint8_t>& bytes) {
    return WithGenericText(ReadWholeFile(path, bytes));
}

ResultCode ReadFileBytes(File& file, std::vector<uint8_t>& bytes) {
    return WithGenericText(ReadWholeFile(file, bytes));
}

WriteOutcome WriteWholeFile(const SystemPath& path, std::span<const uint8_t> bytes) {
    File file;
    if (file.Open(path, FileWrite | FileCreateAndTruncate) != NoError) {
        return WriteOutcome::OpenFailed;
    }
    const bool isWritten = file.Write(0, bytes) == NoError;
    return file.Close() && isWritten ? WriteOutcome::Done : WriteOutcome::WriteFailed;
}

} // namespace Platform
