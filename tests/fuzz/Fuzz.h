#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <string_view>

// What fuzz targets share. A target is one file that defines FuzzOne; the fuzzer feeds it inputs for ever,
// the replay of the committed corpus feeds it those.

// Takes any bytes. A property that does not hold, a failed assertion of the library and whatever a sanitizer
// sees end the process: that is a finding.
void FuzzOne(std::span<const uint8_t> input);

// Outside NDEBUG's reach.
#define FUZZ_REQUIRE(condition) \
    ((condition) ? static_cast<void>(0) : ::Fuzz::Fail(#condition, __FILE__, __LINE__))

namespace Fuzz {

[[noreturn]] void Fail(const char* condition, const char* file, int line);

std::string_view Text(std::span<const uint8_t> bytes);
std::span<const uint8_t> Bytes(std::string_view text);

// Removes the first byte and returns it; 0 from an empty input.
uint8_t TakeByte(std::span<const uint8_t>& input);

// Removes the first line with its end and returns it without.
std::string_view TakeLine(std::string_view& input);

// A folder of this process alone under the system's temporary folder, gone at its end.
class ScratchFolder {
public:
    explicit ScratchFolder(const std::string& name);
    ~ScratchFolder();
    ScratchFolder(const ScratchFolder&) = delete; // owns the folder
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    const std::filesystem::path& Path() const { return m_path; }

private:
    std::filesystem::path m_path;
};

void WriteFile(const std::filesystem::path& path, std::string_view content);
std::string ReadFile(const std::filesystem::path& path);

} // namespace Fuzz
