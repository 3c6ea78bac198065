#include "Tools/PackageTool/src/ConfigCheck.h"

#include <algorithm>
#include <tuple>

#include "Tools/PackageTool/src/ConfigSections.h"

std::vector<ConfigProblem> CheckConfig(std::string_view text) {
    JsonDocument document;
    if (!JsonSerialization::ParseText(text, document)) {
        return {{PositionOf(text, document.GetErrorOffset()), JsonSerialization::ParseErrorText(document)}};
    }
    const JsonPositions positions(text, document);
    std::vector<ConfigProblem> problems;
    const RecordReport report = [&](const JsonValue& where, std::string problem) {
        problems.push_back({positions.Find(where), std::move(problem)});
    };
    if (document.IsObject()) {
        ConfigSections sections;
        ReadConfigSections(document, report, sections);
        CheckPartners(sections, report);
    } else {
        report(document, "The configuration is not an object");
    }
    std::stable_sort(problems.begin(), problems.end(), [](const ConfigProblem& a, const ConfigProblem& b) {
        return std::tie(a.position.line, a.position.column) < std::tie(b.position.line, b.position.column);
    });
    return problems;
}
