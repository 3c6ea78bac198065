#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

// What a disk quota decides over the measured folders of one area, without clock or files.
namespace QuotaDecision {

// One sub-folder of an area.
struct FolderRecord {
    uint64_t age = 0; // seconds
    std::string path;
    uint64_t size = 0; // bytes, of the files directly inside
    bool valid = false;
};

// Both are file times (100 ns). A creation in the future gives an enormous age.
uint64_t AgeInSeconds(uint64_t now, uint64_t creationTime);

// Youngest first. Folders of the same age are sorted by path, so that every pass decides alike.
void SortByAge(std::span<FolderRecord> records);

// Whether a folder is still not a submission after its grace time, in seconds.
bool IsAgedOut(const FolderRecord& record, uint32_t invalidGraceTime);

// How many of the youngest folders fit the quota together. All older ones must be deleted, however small.
std::size_t CountThatFit(std::span<const FolderRecord> youngestFirst, uint64_t quota);

} // namespace QuotaDecision
