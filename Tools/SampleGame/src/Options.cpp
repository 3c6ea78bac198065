#include "Tools/SampleGame/src/Options.h"

#include <charconv>
#include <string_view>

namespace SampleGame {

const char g_usage[] =
    "SampleGame [--dumps FOLDER] [--name NAME] [--crash access-violation|abort|exception|none]\n"
    "           [--attachments COUNT] [--attachment-size BYTES] [--stay-alive MS]\n"
    "           [--fail-in-handler] [--quiet]\n";

namespace {

template <class T>
bool ReadNumber(std::string_view text, T& number) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size();
}

bool ReadCrashKind(std::string_view text, CrashKind& kind) {
    static constexpr std::pair<std::string_view, CrashKind> s_kinds[] = {
        {"access-violation", CrashKind::AccessViolation},
        {"abort", CrashKind::Abort},
        {"exception", CrashKind::Exception},
        {"none", CrashKind::None},
    };
    for (const auto& [name, value] : s_kinds) {
        if (name == text) {
            kind = value;
            return true;
        }
    }
    return false;
}

bool ReadFlag(std::string_view option, Options& options) {
    if (option == "--quiet") {
        options.quiet = true;
    } else if (option == "--fail-in-handler") {
        options.failInHandler = true;
    } else {
        return false;
    }
    return true;
}

bool ReadValue(std::string_view option, std::string_view value, Options& options) {
    if (option == "--dumps") {
        options.dumpsFolder = value;
        return !value.empty();
    }
    if (option == "--name") {
        options.name = value;
        return !value.empty();
    }
    if (option == "--crash") {
        return ReadCrashKind(value, options.crash);
    }
    if (option == "--attachments") {
        return ReadNumber(value, options.attachmentCount);
    }
    if (option == "--attachment-size") {
        return ReadNumber(value, options.attachmentSize);
    }
    return option == "--stay-alive" && ReadNumber(value, options.stayAliveMs);
}

} // namespace

std::string ParseOptions(int argc, const char* const* argv, Options& options) {
    for (int i = 1; i < argc; ++i) {
        const std::string option = argv[i];
        if (ReadFlag(option, options)) {
            continue;
        }
        if (i + 1 == argc || !ReadValue(option, argv[i + 1], options)) {
            return "Unknown option or bad value: " + option;
        }
        ++i;
    }
    return {};
}

} // namespace SampleGame
