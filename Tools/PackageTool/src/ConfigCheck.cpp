#include "Tools/PackageTool/src/ConfigCheck.h"

#include <map>

#include "Libs/Tarnel/Reflection/src/Reflection_Declaration.h"
#include "Tools/PackageTool/src/ConfigPartners.h"
#include "Tools/PackageTool/src/ConfigSections.h"

// The records of --json.
struct ReportedConfigProblem {
    uint64_t line = 0;
    uint64_t column = 0;
    std::string text;
};
struct ReportedConfig {
    std::string file;
    std::vector<ReportedConfigProblem> problems;
};
struct ReportedConfigs {
    std::vector<ReportedConfig> files;
};
Reflection_DeclareType(ReportedConfigProblem);
Reflection_DeclareType(ReportedConfig);
Reflection_DeclareType(ReportedConfigs);
Reflection_DefineType(ReportedConfigProblem, Reflection_Field(line, "Line"),
                      Reflection_Field(column, "Column"), Reflection_Field(text, "Text"));
Reflection_DefineType(ReportedConfig, Reflection_Field(file, "File"), Reflection_Field(problems, "Problems"));
Reflection_DefineType(ReportedConfigs, Reflection_Field(files, "Files"));

namespace {

using ProblemsByOffset = std::multimap<std::size_t, std::string>;

// Walks the text once for all of them: a long text can have a problem in every word.
std::vector<ConfigProblem> WithPositions(std::string_view text, const ProblemsByOffset& found) {
    PositionCounter counter(text);
    std::vector<ConfigProblem> problems;
    for (const auto& [offset, problem] : found) {
        problems.push_back({counter.At(offset), problem});
    }
    return problems;
}

ReportedConfig Check(const std::string& file, const std::vector<uint8_t>& bytes) {
    ReportedConfig report{file, {}};
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    for (const ConfigProblem& problem : CheckConfig(text)) {
        report.problems.push_back({problem.position.line, problem.position.column, problem.text});
    }
    return report;
}

// In the form that editors jump from.
std::string Lines(const ReportedConfig& report) {
    const std::string file = Console::Printable(report.file);
    std::string text = report.problems.empty() ? file + ": good\n" : "";
    for (const ReportedConfigProblem& problem : report.problems) {
        text += file + ":" + std::to_string(problem.line) + ":" + std::to_string(problem.column) + ": " +
                Console::Printable(problem.text) + "\n";
    }
    return text;
}

} // namespace

std::vector<ConfigProblem> CheckConfig(std::string_view text) {
    JsonDocument document;
    if (const auto parsed = JsonSerialization::ParseText(text, document); !parsed) {
        return WithPositions(text, {{parsed.offset, parsed.error}});
    }
    const JsonPositions positions(text, document);
    ProblemsByOffset found;
    const ConfigReport report = [&](const JsonValue& where, std::string problem) {
        found.emplace(positions.Find(where), std::move(problem));
    };
    if (document.IsObject()) {
        ConfigSections sections;
        ReadConfigSections(document, report, sections);
        CheckPartners(sections, report);
    } else {
        report(document, "The configuration is not an object");
    }
    return WithPositions(text, found);
}

ExitCode RunCheckConfig(const Arguments& arguments) {
    ExitCode code = ExitCode::Good;
    ReportedConfigs reports;
    for (const std::string& file : arguments.files) {
        std::vector<uint8_t> bytes;
        std::string reason;
        if (!Console::ReadInput(file, bytes, reason)) {
            Console::PrintError(file, reason);
            Raise(code, ExitCode::NotReadOrWritten);
            continue;
        }
        reports.files.push_back(Check(file, bytes));
        if (!reports.files.back().problems.empty()) {
            Raise(code, ExitCode::ProblemsFound);
        }
    }
    if (arguments.json) {
        Console::PrintJson(reports);
        return code;
    }
    for (const ReportedConfig& report : reports.files) {
        Console::Print(Lines(report));
    }
    return code;
}
