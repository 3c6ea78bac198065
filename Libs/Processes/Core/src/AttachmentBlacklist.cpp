#include "Libs/Processes/Core/src/AttachmentBlacklist.h"

#include <algorithm>
#include <cstddef>
#include <exception>
#include <string_view>

namespace {

// The compiler of expressions adds up the number of a repeat, {2,5}, or of a back-reference, \1, without a
// check for overflow. Digits anywhere else are just text.
bool HasHugeNumber(std::string_view pattern) {
    constexpr std::size_t MaxDigits = 9;
    const auto isHugeAt = [&](std::size_t at) {
        return std::min(pattern.find_first_not_of("0123456789", at), pattern.size()) - at > MaxDigits;
    };
    bool isInBrackets = false;
    for (std::size_t at = 0; at < pattern.size(); ++at) {
        const char character = pattern[at];
        if (character == '\\') {
            ++at;
            if (!isInBrackets && at < pattern.size() && pattern[at] != '0' && isHugeAt(at)) {
                return true;
            }
        } else if (character == '[' || character == ']') {
            isInBrackets = character == '[';
        } else if (character == '{' && !isInBrackets) {
            const std::size_t comma = pattern.find_first_not_of("0123456789", at + 1);
            if (isHugeAt(at + 1) || (comma != pattern.npos && pattern[comma] == ',' && isHugeAt(comma + 1))) {
                return true;
            }
        }
    }
    return false;
}

// Names are hostile: a backtracking search never ends for some names and harmless expressions, such as
// (a+a+)+b. libstdc++ can search without backtracking if there are no back-references; other libraries limit
// the search themselves.
std::regex CompileOne(const std::string& pattern) {
#if defined(__GLIBCXX__)
    try {
        return std::regex(pattern, std::regex::ECMAScript | std::regex_constants::__polynomial);
    } catch (const std::regex_error& failure) {
        if (failure.code() != std::regex_constants::error_complexity) {
            throw;
        }
    }
#endif
    return std::regex(pattern);
}

} // namespace

ResultCode AttachmentBlacklist::Compile(const std::vector<std::string>& patterns, BadPattern& bad) {
    m_expressions.clear();
    for (const std::string& pattern : patterns) {
        std::string message = pattern.size() > MaxPatternLength ? "It has more than 1000 bytes"
                                                                : "A number in it has more than 9 digits";
        try {
            if (pattern.size() <= MaxPatternLength && !HasHugeNumber(pattern)) {
                m_expressions.push_back(CompileOne(pattern));
                continue;
            }
        } catch (const std::exception& failure) {
            message = failure.what();
        }
        bad = {pattern, message};
        return "Invalid regular expression in attachment black list";
    }
    return Platform::Success;
}

AttachmentBlacklist::Verdict AttachmentBlacklist::Judge(const std::string& name) const {
    try {
        for (const std::regex& expression : m_expressions) {
            if (std::regex_search(name, expression)) {
                return Verdict::Listed;
            }
        }
        return Verdict::Allowed;
    } catch (const std::exception&) { // too complex, or out of memory
        return Verdict::Unknown;
    }
}
