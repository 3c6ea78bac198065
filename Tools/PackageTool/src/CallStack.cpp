#include "Tools/PackageTool/src/CallStack.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <iterator>

#include "Libs/Processes/Core/src/FolderPath.h"

namespace {

std::string Hex(uint64_t number) {
    char digits[16];
    const auto end = std::to_chars(std::begin(digits), std::end(digits), number, 16).ptr;
    return "0x" + std::string(digits, end);
}

std::string Frame(uint64_t address, const std::vector<ModuleInfo>& modules) {
    const auto found = std::ranges::find_if(modules, [address](const ModuleInfo& module) {
        return address >= module.baseAddr && address - module.baseAddr < module.size;
    });
    if (found == modules.end()) {
        return Hex(address);
    }
    constexpr std::size_t LongestName = 255; // as file systems have it
    const std::string name = FolderPath::LastComponent(found->file).value_or(found->file);
    return name.substr(0, LongestName) + "+" + Hex(address - found->baseAddr);
}

} // namespace

std::vector<std::string> ShownFrames(const BugHeader& header) {
    std::vector<std::string> frames;
    for (std::size_t i = 0; i < std::min(header.callstack.size(), MaxShownFrames); ++i) {
        frames.push_back(Frame(header.callstack[i], header.moduleInfo));
    }
    return frames;
}
