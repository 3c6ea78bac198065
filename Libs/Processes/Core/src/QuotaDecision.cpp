#include "Libs/Processes/Core/src/QuotaDecision.h"

#include <algorithm>
#include <tuple>

namespace QuotaDecision {

uint64_t AgeInSeconds(uint64_t now, uint64_t creationTime) {
    constexpr uint64_t FileTimeUnitsPerSecond = 10'000'000;
    return (now - creationTime) / FileTimeUnitsPerSecond;
}

void SortByAge(std::span<FolderRecord> records) {
    std::ranges::sort(records, [](const FolderRecord& left, const FolderRecord& right) {
        return std::tie(left.age, left.path) < std::tie(right.age, right.path);
    });
}

bool IsAgedOut(const FolderRecord& record, uint32_t invalidGraceTime) {
    return !record.valid && record.age > invalidGraceTime;
}

std::size_t CountThatFit(std::span<const FolderRecord> youngestFirst, uint64_t quota) {
    uint64_t left = quota; // counted down: a total could overflow
    std::size_t count = 0;
    for (const FolderRecord& record : youngestFirst) {
        if (record.size > left) {
            break;
        }
        left -= record.size;
        ++count;
    }
    return count;
}

} // namespace QuotaDecision
