#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "Libs/Tarnel/Platform/src/Common/Platform_IO.h"

// Whole files as bytes, for small ones; ByteSource reads in pieces. Paths are UTF-8. No failure throws: a
// file that does not fit in memory is a read failure.
namespace Platform {

// The step at which a whole-file read failed; each caller has texts of its own for the steps.
enum class ReadOutcome { Done, OpenFailed, Empty, ReadFailed };

// Replaces bytes. After anything but Done they are empty. A file of length 0 is Empty. Others may still hold
// the file open for writing; it waits for one that they don't share.
[[nodiscard]] ReadOutcome ReadWholeFile(const SystemPath& path, std::vector<uint8_t>& bytes);

// The same for a file that is open for reading and that nobody has read from.
[[nodiscard]] ReadOutcome ReadWholeFile(File& file, std::vector<uint8_t>& bytes) noexcept;

// With the generic texts: "Failed to open input file", "Failed to read zero length input file!" and
// "Failed to read file bytes".
ResultCode ReadFileBytes(const SystemPath& path, std::vector<uint8_t>& bytes);
ResultCode ReadFileBytes(File& file, std::vector<uint8_t>& bytes);

enum class WriteOutcome { Done, OpenFailed, WriteFailed };

// Creates or truncates the file and writes everything; a failure may leave a part of it.
[[nodiscard]] WriteOutcome WriteWholeFile(const SystemPath& path, std::span<const uint8_t> bytes);

} // namespace Platform
