#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "Libs/Tarnel/Platform/src/Common/Platform_IO.h"

// Whole files as bytes. Paths are UTF-8. No failure throws: a file that does not fit in memory is a read
// failure.
namespace Platform {

// The step at which a whole-file read failed; each caller has texts of its own for the steps.
enum class ReadOutcome { Done, OpenFailed, Empty, ReadFailed };

// What others may do with the file while it is read: Everything copes with a file that its writer still holds
// open; DenyWriters fails to open such a file.
enum class ReadSharing { Everything, DenyWriters };

// Replaces bytes. After anything but Done they are empty. A file of length 0 is Empty.
[[nodiscard]] ReadOutcome ReadWholeFile(const SystemPath& path, std::vector<uint8_t>& bytes,
                                        ReadSharing sharing = ReadSharing::Everything);

// The same for a file that is open for reading and that nobody has read from.
[[nodiscard]] ReadOutcome ReadWholeFile(File& file, std::vector<uint8_t>& bytes) noexcept;

// The generic texts: "Failed to open input file", "Failed to read zero length input file!" and
// "Failed to read file bytes".
ResultCode ReadFileBytes(const SystemPath& path, std::vector<uint8_t>& bytes);

enum class WriteOutcome { Done, OpenFailed, WriteFailed };

// Creates or truncates the file and writes everything; a failure may leave a part of it behind. With
// FlushToDisk the bytes are on the medium when the call returns.
enum class WriteDurability { Buffered, FlushToDisk };
[[nodiscard]] WriteOutcome WriteWholeFile(const SystemPath& path, std::span<const uint8_t> bytes,
                                          WriteDurability durability = WriteDurability::Buffered);

} // namespace Platform
