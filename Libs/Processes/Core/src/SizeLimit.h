#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "Libs/Tarnel/Reflection/src/Reflection_Declaration.h"

// The largest size in bytes of the files whose names end in extension. Case does not matter and no dot is
// implied:
// ".log" and "log" both end "game.LOG".
struct AttachmentLimit {
    std::string extension;
    uint64_t maxSize = 0;
};
Reflection_DeclareType(AttachmentLimit);

// True when any limit that is for this file is under its size.
bool IsAttachmentOverSizeLimit(const std::vector<AttachmentLimit>& limits, std::string_view file,
                               uint64_t size);

// The first limit that is for this file, whatever its size. There must be one: without, an assertion is
// reported and 0 returned.
uint64_t FindAttachmentSizeLimit(const std::vector<AttachmentLimit>& limits, std::string_view file);

// Truncates the file's bytes to its limit. The file must be over a limit and over the first limit that is for
// it; a file that is not is reported as an assertion and, as there is nothing to cut, stays whole. May throw
// std::bad_alloc.
void TruncateToSizeLimit(const std::vector<AttachmentLimit>& limits, std::string_view file,
                         std::vector<uint8_t>& attBytes);
