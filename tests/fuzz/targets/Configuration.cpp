// Whatever the agent can't read, check-config reports, and its places lie in the text, in order.
#include <algorithm>
#include <tuple>

#include "Libs/Shared/src/JsonConfig.h"
#include "Tools/PackageTool/src/ConfigCheck.h"
#include "tests/fuzz/Fuzz.h"

void FuzzOne(std::span<const uint8_t> input) {
    const std::string_view text = Fuzz::Text(input);
    const auto lines = static_cast<std::size_t>(std::ranges::count(text, '\n')) + 1;
    const std::vector<JsonProblem> problems = CheckConfig(text);
    TextPosition last;
    for (const JsonProblem& problem : problems) {
        const auto& [line, column] = problem.position;
        FUZZ_REQUIRE(!problem.text.empty() && line <= lines && column <= text.size() + 1);
        FUZZ_REQUIRE(std::tie(last.line, last.column) <= std::tie(line, column));
        last = problem.position;
    }
    JsonDocument document;
    ApplicationConfig application;
    FUZZ_REQUIRE(!problems.empty() || (JsonSerialization::ParseText(text, document) &&
                                       ReadConfigSection(document, "Application", application)));
}
