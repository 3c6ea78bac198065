#include "Libs/Framework/Application/src/Utf8Arguments.h"

#include <windows.h>

#include <shellapi.h>

#include <array>
#include <cstring>

namespace {

constexpr std::size_t BufferSize = 4096; // with the terminator

// An argument that does not fit is a failed conversion that leaves its beginning, without a terminator, in
// the buffer; one that can't be converted at all leaves nothing.
std::string ToUtf8(const wchar_t* argument) {
    std::array<char, BufferSize> buffer = {};
    WideCharToMultiByte(CP_UTF8, 0, argument, -1, buffer.data(), BufferSize, nullptr, nullptr);
    return {buffer.data(), strnlen(buffer.data(), BufferSize - 1)};
}

} // namespace

std::vector<std::string> Utf8Arguments(const wchar_t* commandLine) {
    std::vector<std::string> arguments;
    int count = 0;
    wchar_t** wide = CommandLineToArgvW(commandLine, &count);
    for (int i = 0; wide && i < count; ++i) {
        arguments.push_back(ToUtf8(wide[i]));
    }
    LocalFree(wide);
    return arguments;
}
