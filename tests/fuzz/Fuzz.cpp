#include "tests/fuzz/Fuzz.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>

namespace Fuzz {

void Fail(const char* condition, const char* file, int line) {
    std::fprintf(stderr, "%s:%d: does not hold: %s\n", file, line, condition);
    std::abort();
}

std::string_view Text(std::span<const uint8_t> bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

std::span<const uint8_t> Bytes(std::string_view text) {
    return {reinterpret_cast<const uint8_t*>(text.data()), text.size()};
}

uint8_t TakeByte(std::span<const uint8_t>& input) {
    if (input.empty()) {
        return 0;
    }
    const uint8_t byte = input.front();
    input = input.subspan(1);
    return byte;
}

std::string_view TakeLine(std::string_view& input) {
    const std::size_t end = input.find('\n');
    const std::string_view line = input.substr(0, end);
    input = end == std::string_view::npos ? std::string_view() : input.substr(end + 1);
    return line;
}

ScratchFolder::ScratchFolder(const std::string& name)
    : m_path(std::filesystem::temp_directory_path() /
             ("morvane-fuzz-" + name + "-" + std::to_string(getpid()))) {
    std::filesystem::remove_all(m_path);
    std::filesystem::create_directories(m_path);
}

ScratchFolder::~ScratchFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
}

void WriteFile(const std::filesystem::path& path, std::string_view content) {
    std::ofstream file(path, std::ios::binary);
    file.write(content.data(), static_cast<std::streamsize>(content.size()));
}

std::string ReadFile(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

} // namespace Fuzz
