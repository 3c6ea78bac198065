#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "Libs/Tarnel/Platform/src/Common/Platform_ByteSource.h"
#include "Libs/Tarnel/Reflection/src/Reflection_Declaration.h"

// The largest size in bytes of the files whose names end in extension. Case does not matter and no dot is
// implied: ".log" and "log" both end "game.LOG".
struct AttachmentLimit {
    std::string extension;
    uint64_t maxSize = 0;
};
Reflection_DeclareType(AttachmentLimit);

// True if any limit for this file is below its size.
bool IsAttachmentOverSizeLimit(const std::vector<AttachmentLimit>& limits, std::string_view file,
                               uint64_t size);

// The first limit for this file, whatever its size. Without one an assertion is reported and 0 returned.
uint64_t FindAttachmentSizeLimit(const std::vector<AttachmentLimit>& limits, std::string_view file);

// The stretch of bytes that truncation removes, from begin up to end.
struct TruncationCut {
    uint64_t begin = 0;
    uint64_t end = 0;
};

// The stretch around the middle, computed in single precision: for large sizes it is a little off the middle.
// Never reaches past size. limit must not exceed size.
TruncationCut ComputeTruncationCut(uint64_t size, uint64_t limit);

// What is packaged of a file: all of it; or, if it is over a limit and over the first limit for its name, its
// two ends with a banner between them that names both sizes: of 1000 bytes cut to 600, the bytes 0 to 299 and
// 700 to 999. The stretch between is not read. A file that is over another limit only is reported as an
// assertion and stays whole. The file outlives it. Construction may throw std::bad_alloc.
class LimitedBytes final : public Platform::ByteSource {
public:
    LimitedBytes(Platform::ByteSource& file, const std::vector<AttachmentLimit>& limits,
                 std::string_view name);

    uint64_t GetSize() const override;

private:
    bool ReadInside(uint64_t offset, std::span<uint8_t> buffer) override;

    Platform::ByteSource& m_file;
    TruncationCut m_cut; // of the file; empty for one that stays whole
    std::string m_banner;
};
