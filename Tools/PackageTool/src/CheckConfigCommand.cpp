#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_Serializer.h"
#include "Libs/Tarnel/Reflection/src/Reflection_Declaration.h"
#include "Tools/PackageTool/src/Commands.h"
#include "Tools/PackageTool/src/ConfigCheck.h"
#include "Tools/PackageTool/src/ConfigSchema.h"

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
    if (!arguments.json) {
        for (const ReportedConfig& report : reports.files) {
            Console::Print(Lines(report));
        }
        return code;
    }
    JsonDocument document;
    std::string text;
    if (!JsonSerialization::WriteRecord(reports, document) || !JsonSerialization::WriteText(document, text)) {
        throw std::bad_alloc(); // the one way to fail
    }
    Console::Print(text + "\n");
    return code;
}

ExitCode RunConfigSchema(const Arguments&) {
    Console::Print(ConfigSchemaText());
    return ExitCode::Good;
}
