#include "Tools/PackageTool/src/ConfigCheck.h"

#include <algorithm>

#include "Libs/Tarnel/Reflection/src/Reflection_Declaration.h"
#include "Tools/PackageTool/src/ConfigPartners.h"
#include "Tools/PackageTool/src/ConfigSections.h"
#include "Tools/PackageTool/src/ConfigWarnings.h"
#include "Tools/PackageTool/src/ConnectCheck.h"

// The records of --json.
struct ReportedConfigProblem {
    uint64_t line = 0;
    uint64_t column = 0;
    std::string text;
    bool isWarning = false;
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
                      Reflection_Field(column, "Column"), Reflection_Field(text, "Text"),
                      Reflection_Field(isWarning, "Warning"));
Reflection_DefineType(ReportedConfig, Reflection_Field(file, "File"), Reflection_Field(problems, "Problems"));
Reflection_DefineType(ReportedConfigs, Reflection_Field(files, "Files"));

namespace {

ReportedConfig Check(const std::string& file, const std::vector<uint8_t>& bytes) {
    ReportedConfig report{file, {}};
    for (const JsonProblem& problem : CheckConfig(Platform::TextOf(bytes))) {
        report.problems.push_back(
            {problem.position.line, problem.position.column, problem.text, problem.isWarning});
    }
    return report;
}

// In the form that editors jump from.
std::string Lines(const ReportedConfig& report) {
    const std::string file = Console::Printable(report.file);
    std::string text = report.problems.empty() ? file + ": good\n" : "";
    for (const ReportedConfigProblem& problem : report.problems) {
        text += file + ":" + std::to_string(problem.line) + ":" + std::to_string(problem.column) + ": " +
                (problem.isWarning ? "warning: " : "") + Console::Printable(problem.text) + "\n";
    }
    return text;
}

} // namespace

std::vector<JsonProblem> CheckConfig(std::string_view text) {
    JsonDocument document;
    if (const auto parsed = JsonSerialization::ParseText(text, document); !parsed) {
        return {ParseProblem(text, parsed)};
    }
    JsonProblems problems;
    const auto reporter = [&](bool isWarning) -> ConfigReport {
        return [&, isWarning](const JsonValue& where, std::string problem) {
            problems.Add(where, std::move(problem), isWarning);
        };
    };
    const ConfigReport report = reporter(false);
    if (document.IsObject()) {
        ConfigSections sections;
        ReadConfigSections(document, report, sections);
        CheckPartners(sections, report);
        CheckWarnings(document, sections, reporter(true));
    } else {
        report(document, "The configuration is not an object");
    }
    return problems.InOrderOf(text, document);
}

ExitCode RunCheckConfig(const Arguments& arguments) {
    ExitCode code = ExitCode::Good;
    ReportedConfigs reports;
    std::vector<std::vector<uint8_t>> texts;
    for (const std::string& file : arguments.files) {
        std::vector<uint8_t> bytes;
        if (!Console::ReadInput(file, bytes)) {
            Raise(code, ExitCode::NotReadOrWritten);
            continue;
        }
        reports.files.push_back(Check(file, bytes));
        texts.push_back(std::move(bytes));
        for (const ReportedConfigProblem& problem : reports.files.back().problems) {
            Raise(code, problem.isWarning ? ExitCode::OnlyWarnings : ExitCode::ProblemsFound);
        }
    }
    if (arguments.json) {
        Console::PrintJson(reports);
        return code;
    }
    for (std::size_t i = 0; i < texts.size(); ++i) {
        const ReportedConfig& report = reports.files[i];
        Console::Print(Lines(report));
        if (arguments.connect && std::ranges::all_of(report.problems, &ReportedConfigProblem::isWarning)) {
            Raise(code, TryUploaders(report.file, Platform::TextOf(texts[i])));
        }
    }
    return code;
}
