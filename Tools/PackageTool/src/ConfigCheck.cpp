#include "Tools/PackageTool/src/ConfigCheck.h"

#include <map>

#include "Tools/PackageTool/src/ConfigSections.h"

namespace {

using ProblemsByOffset = std::multimap<std::size_t, std::string>;

// One walk through the text for all of them: a long text can have a problem in every word.
std::vector<ConfigProblem> WithPositions(std::string_view text, const ProblemsByOffset& found) {
    PositionCounter counter(text);
    std::vector<ConfigProblem> problems;
    for (const auto& [offset, problem] : found) {
        problems.push_back({counter.At(offset), problem});
    }
    return problems;
}

} // namespace

std::vector<ConfigProblem> CheckConfig(std::string_view text) {
    JsonDocument document;
    if (!JsonSerialization::ParseText(text, document)) {
        return WithPositions(text,
                             {{document.GetErrorOffset(), JsonSerialization::ParseErrorText(document)}});
    }
    const JsonPositions positions(text, document);
    ProblemsByOffset found;
    const RecordReport report = [&](const JsonValue& where, std::string problem) {
        found.emplace(positions.Find(where), std::move(problem));
    };
    if (document.IsObject()) {
        ConfigSections sections;
        ReadConfigSections(document, report, sections);
        CheckPartners(sections, report);
    } else {
        report(document, "The configuration is not an object");
    }
    return WithPositions(text, std::move(found));
}
