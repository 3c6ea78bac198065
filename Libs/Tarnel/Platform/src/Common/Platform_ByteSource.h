#pragma once

#include <algorithm>
#include <cstdint>
#include <span>
#include <string_view>
#include <utility>

#include "Libs/Tarnel/Platform/src/Common/Platform_IO.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_ResultCode.h"

// Bytes that are read in pieces, so that a file of any size takes little memory.
namespace Platform {

// A known number of bytes, read from any place. One thread. Nothing throws.
class ByteSource {
public:
    ByteSource() = default;
    virtual ~ByteSource() = default;
    ByteSource(const ByteSource&) = delete; // users hold its address
    ByteSource& operator=(const ByteSource&) = delete;

    virtual uint64_t GetSize() const = 0;

    // Fills the whole buffer with the bytes from offset on. False if they can't be read, or if the source
    // ends before.
    [[nodiscard]] bool Read(uint64_t offset, std::span<uint8_t> buffer);

    // Whether any Read failed: tells a bad source from bad bytes.
    bool HasFailed() const { return m_hasFailed; }

private:
    // The source has all bytes that the buffer asks for.
    virtual bool ReadInside(uint64_t offset, std::span<uint8_t> buffer) = 0;

    bool m_hasFailed = false;
};

// Of bytes that outlive it.
class MemorySource final : public ByteSource {
public:
    explicit MemorySource(std::span<const uint8_t> bytes) : m_bytes(bytes) {}
    uint64_t GetSize() const override { return m_bytes.size(); }

private:
    bool ReadInside(uint64_t offset, std::span<uint8_t> buffer) override;

    std::span<const uint8_t> m_bytes;
};

// Of an open file, as long as it was at opening: what it grew by is left out, and one that got shorter fails.
class FileSource final : public ByteSource {
public:
    explicit FileSource(File file) : m_file(std::move(file)) {}
    uint64_t GetSize() const override { return m_file.GetSize(); }

private:
    bool ReadInside(uint64_t offset, std::span<uint8_t> buffer) override;

    File m_file;
};

// A text's bytes, and bytes as text.
inline std::span<const uint8_t> BytesOf(std::string_view text) {
    return {reinterpret_cast<const uint8_t*>(text.data()), text.size()};
}
inline std::string_view TextOf(std::span<const uint8_t> bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

// What ends reading from a source whose Read failed.
inline constexpr char ReadFailure[] = "Failed to read file bytes";

// Hands size bytes from offset on to take, piece by piece; a piece is gone after the call. ReadFailure if
// they can't be read, and take's first failure. Uses 64 KB of the caller's stack.
template <class Take> // ResultCode take(std::span<const uint8_t> piece)
ResultCode ForEachPiece(ByteSource& source, uint64_t offset, uint64_t size, Take take) {
    uint8_t room[std::size_t{64} << 10];
    while (size > 0) {
        const auto count = static_cast<std::size_t>(std::min<uint64_t>(size, sizeof(room)));
        if (!source.Read(offset, {room, count})) {
            return ReadFailure;
        }
        RETURN_IF_FAILED(take(std::span<const uint8_t>(room, count)));
        offset += count;
        size -= count;
    }
    return Success;
}

} // namespace Platform
