#include "Tools/PackageTool/src/ForEachPackage.h"

#include <utility>

ExitCode ForEachPackage(const Arguments& arguments, const PackageWork& work, const PackageText& say) {
    ExitCode code = ExitCode::Good;
    PackageReports reports;
    for (const std::string& file : arguments.files) {
        std::vector<uint8_t> package;
        std::string reason;
        if (!Console::ReadInput(file, package, reason)) {
            Console::PrintError(file, reason);
            Raise(code, ExitCode::NotReadOrWritten);
            continue;
        }
        PackageReport report = work(file, package);
        if (!report.problems.empty()) {
            Raise(code, ExitCode::ProblemsFound);
        }
        if (arguments.json) {
            reports.packages.push_back(std::move(report));
        } else {
            Console::Print(say(report));
        }
    }
    if (arguments.json) {
        Console::Print(ReportJson(reports));
    }
    return code;
}
