#pragma once

#include <cstddef>
#include <regex>
#include <string>
#include <vector>

#include "Libs/Tarnel/Platform/src/Common/Platform_ResultCode.h"

// The expressions that keep attachments out of packages. Compiled once on the main thread; any thread may
// judge afterwards.
class AttachmentBlacklist {
public:
    // In bytes of UTF-8. Reading an expression needs stack for each of its levels.
    static constexpr std::size_t MaxPatternLength = 1000;

    // Why a pattern was refused.
    struct BadPattern {
        std::string pattern;
        std::string message;
    };

    // Replaces the list. Patterns are in the default grammar of std::regex and compare case-sensitively.
    // Stops at the first pattern that is none, which bad then tells.
    ResultCode Compile(const std::vector<std::string>& patterns, BadPattern& bad);

    // Unknown: the search gave up on this name; what cannot be checked must not be sent.
    enum class Verdict { Allowed, Listed, Unknown };

    // Listed when any expression is found anywhere in the name. What the search takes of time and stack is in
    // bounds that the expression sets and not the name; only an expression with back-references can take time
    // without end, and about a kilobyte of stack for each byte of the name.
    Verdict Judge(const std::string& name) const;

private:
    std::vector<std::regex> m_expressions;
};
