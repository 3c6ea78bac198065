#include "Libs/Framework/Core/src/CommandLine.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "Libs/Shared/src/JsonConfig.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Assert.h"

namespace {

bool IsOptionName(const char* opt) {
    PLATFORM_ASSERT(opt && *opt);
    return opt && *opt;
}

} // namespace

const char* CommandLine::ValueOfArgument(const char* argument, const char* opt) {
    if (!IsOptionName(opt) || !argument || _strnicmp(argument, opt, std::strlen(opt)) != 0) {
        return nullptr;
    }
    const char* equals = std::strchr(argument, '=');
    return equals ? equals + 1 : nullptr;
}

std::optional<std::string> CommandLine::FindOption(int argc, const char* const* argv, const char* opt) {
    if (!IsOptionName(opt)) { // reported once, even without arguments
        return std::nullopt;
    }
    for (int i = 0; i < argc; ++i) {
        if (const char* value = ValueOfArgument(argv[i], opt)) {
            return *value ? std::optional<std::string>(value) : std::nullopt;
        }
    }
    return std::nullopt;
}

bool CommandLine::HasFlag(int argc, const char* const* argv, const char* flag) {
    for (int i = 0; i < argc; ++i) {
        if (argv[i] && _stricmp(argv[i], flag) == 0) {
            return true;
        }
    }
    return false;
}

std::string_view CommandLine::ProbablyMeant(const char* argument) {
    static constexpr const char* WithValue[] = {"-config", "-appFolder", "-log", "-process"};
    static const std::vector<std::string_view> Known = {
        "-config=", "-appFolder=", "-log=", "-process=", "-console", "-help"};
    const auto isGiven = [&](const char* option) { return ValueOfArgument(argument, option) != nullptr; };
    if (!argument || *argument != '-' || _stricmp(argument, "-console") == 0 ||
        std::ranges::any_of(WithValue, isGiven)) {
        return {};
    }
    const std::string_view word(argument);
    return ConfigKeys::Nearest(word.substr(0, word.find('=')), Known);
}
