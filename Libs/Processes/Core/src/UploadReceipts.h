#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "Libs/Tarnel/Platform/src/Common/Platform_ResultCode.h"
#include "Libs/Tarnel/Reflection/src/Reflection_Declaration.h"

// One package that arrived.
struct UploadReceipt {
    std::string time;       // UTC, 2024-05-06T07:08:09Z
    std::string submission; // the folder's name
    std::string key;        // the object's: the number that a player tells support
    uint64_t size = 0;      // bytes of the package
    double seconds = 0;     // that its upload took
};
Reflection_DeclareType(UploadReceipt);

// The file on the player's machine that says what was sent: a line of JSON for each package, the last 1,000
// of them.
namespace UploadReceipts {

inline constexpr std::size_t MostLines = 1000;
inline constexpr uint64_t MostBytes = uint64_t{1} << 20; // what is before them is deleted first

// Adds a line with the time of now. It is on the medium when the call returns. If a kill
// has cut the last line, it begins on a new one. A kill loses no line: the shorter file is complete before it
// takes the old one's place. Any thread; calls wait for each other. Throws std::bad_alloc.
ResultCode Add(const std::string& path, UploadReceipt receipt);

struct Content {
    std::vector<UploadReceipt> receipts;
    uint64_t damagedLines = 0;
};

// What the text of such a file says. Throws std::bad_alloc.
Content Read(std::string_view text);

} // namespace UploadReceipts
