#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

// A crash submission such as a large game leaves behind, made up from fixed seeds: the same on every machine
// and in every run.
namespace Bench {

struct SubmissionFile {
    std::string name;
    std::vector<uint8_t> bytes;
};

// Of total bytes together: 5/8 minidump (pages of zeros, of records with pointers and of code), 1/4 log, the
// rest a picture that is compressed already.
std::vector<SubmissionFile> MakeSubmission(std::size_t total);

inline constexpr std::size_t FullSubmission = std::size_t{256} << 20;
inline constexpr std::size_t QuickSubmission = std::size_t{8} << 20;

// Writes the files and a header that names them into the folder, which exists.
void WriteSubmission(const std::string& folder, const std::vector<SubmissionFile>& files);

} // namespace Bench
