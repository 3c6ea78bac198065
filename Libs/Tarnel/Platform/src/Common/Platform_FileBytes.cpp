#include "Libs/Tarnel/Platform/src/Common/Platform_FileBytes.h"

#include <algorithm>
#include <exception>

#include "Libs/Tarnel/Platform/src/Common/Platform_RawFile.h"

namespace Platform {
namespace {

// One call of the operating system moves at most so much: small enough for its 32-bit lengths, large enough
// that the calls cost nothing.
constexpr std::size_t MaxPiece = std::size_t{1} << 20;

uint32_t PieceOf(std::size_t left) {
    return static_cast<uint32_t>(std::min(left, MaxPiece));
}

// Shortens bytes to what was there: a file may shrink after its size was asked. What it grew is left out.
bool Fill(RawFile& file, std::vector<uint8_t>& bytes) {
    std::size_t done = 0;
    while (done < bytes.size()) {
        uint32_t transferred = 0;
        if (!file.Read(bytes.data() + done, PieceOf(bytes.size() - done), transferred)) {
            return false;
        }
        if (transferred == 0) {
            break;
        }
        done += transferred;
    }
    bytes.resize(done);
    return true;
}

ReadOutcome ReadOpenFile(RawFile& file, std::vector<uint8_t>& bytes) {
    uint64_t size = 0;
    if (!file.GetSize(size)) {
        return ReadOutcome::ReadFailed;
    }
    if (size > bytes.max_size()) {
        return ReadOutcome::ReadFailed;
    }
    bytes.resize(static_cast<std::size_t>(size));
    if (!Fill(file, bytes)) {
        return ReadOutcome::ReadFailed;
    }
    return bytes.empty() ? ReadOutcome::Empty : ReadOutcome::Done;
}

} // namespace

ReadOutcome ReadWholeFile(const std::string& path, std::vector<uint8_t>& bytes, ReadSharing sharing) {
    bytes.clear();
    RawFile file;
    if (!file.OpenForReading(path, sharing)) {
        return ReadOutcome::OpenFailed;
    }
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

ResultCode ReadFileBytes(const std::string& path, std::vector<uint8_t>& bytes) {
    switch (ReadWholeFile(path, bytes)) {
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

WriteOutcome WriteWholeFile(const std::string& path, std::span<const uint8_t> bytes,
                            WriteDurability durability) {
    RawFile file;
    if (!file.CreateForWriting(path)) {
        return WriteOutcome::OpenFailed;
    }
    while (!bytes.empty()) {
        uint32_t transferred = 0;
        if (!file.Write(bytes.data(), PieceOf(bytes.size()), transferred) || transferred == 0) {
            return WriteOutcome::WriteFailed;
        }
        bytes = bytes.subspan(transferred);
    }
    const bool isDurable = durability == WriteDurability::Buffered || file.Flush();
    return isDurable && file.Close() ? WriteOutcome::Done : WriteOutcome::WriteFailed;
}

} // namespace Platform
