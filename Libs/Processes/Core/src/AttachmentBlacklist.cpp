#include "Libs/Processes/Core/src/AttachmentBlacklist.h"

#include <exception>

ResultCode AttachmentBlacklist::Compile(const std::vector<std::string>& patterns, BadPattern& bad) {
    m_expressions.clear();
    for (const std::string& pattern : patterns) {
        try {
            m_expressions.emplace_back(pattern);
        } catch (const std::exception& failure) {
            bad = {pattern, failure.what()};
            return "Invalid regular expression in attachment black list";
        }
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
