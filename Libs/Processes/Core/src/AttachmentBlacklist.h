#pragma once

#include <cstddef>
#include <regex>
#include <string>
#include <vector>

#include "Libs/Tarnel/Platform/src/Common/Platform_ResultCode.h"

// The expressions that keep attachments out of packages. Compiled once on the main thread; any thread may
// call Judge afterwards.
class AttachmentBlacklist {
public:
    // In bytes of UTF-8. Compiling an expression needs stack for each level of nesting.
    static constexpr std::size_t MaxPatternLength = 1000;

    // Why a pattern was refused.
    struct BadPattern {
        std::string pattern;
        std::string message;
    };

    // Replaces the list. Patterns are in the default grammar of std::regex and case-sensitive. Stops at the
    // first invalid pattern and describes it in bad.
    ResultCode Compile(const std::vector<std::string>& patterns, BadPattern& bad);

    // Unknown: the search failed on this name; what cannot be checked must not be sent.
    enum class Verdict { Allowed, Listed, Unknown };

    // Listed if any expression is found anywhere in the name. Time and stack depend on the expression and
    // grow at most linearly with the name; only an expression with back-references can search forever, and
    // needs about a kilobyte of stack for each byte of the name. Built with Visual Studio's library, every
    // search that takes too many steps or too much stack ends as Unknown.
    Verdict Judge(const std::string& name) const;

private:
    std::vector<std::regex> m_expressions;
};
