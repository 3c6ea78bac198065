#include "Libs/Processes/Core/src/AttachmentBlacklist.h"

#include <algorithm>
#include <exception>

namespace {

// The library adds up the number of a repeat or of a back-reference without a look at its size.
bool HasHugeNumber(const std::string& pattern) {
    constexpr std::ptrdiff_t MaxDigits = 9;
    const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
    for (auto at = pattern.begin(); at != pattern.end(); ++at) {
        if ((*at == '{' || *at == ',' || *at == '\\') &&
            std::find_if_not(at + 1, pattern.end(), isDigit) - at > MaxDigits + 1) {
            return true;
        }
    }
    return false;
}

// Names are hostile: a search that tries one way after the other takes time without end for some names and
// harmless expressions, such as (a+a+)+b. One library can follow all ways at once, if there are no
// back-references; the other ones bound the search by themselves.
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
        std::string message = "It is too long, or a number in it too large";
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
