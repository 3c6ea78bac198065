#include "Tools/PackageTool/src/Commands.h"
#include "Tools/PackageTool/src/ForEachPackage.h"
#include "Tools/PackageTool/src/Progress.h"

namespace {

// Notes the size of what each entry holds.
void MeasureEntries(const PackageReader& reader, uint64_t limit, Progress& progress, PackageReport& report) {
    for (std::size_t i = 0; i < reader.GetEntries().size(); ++i) {
        // The report has what is wrong with it.
        static_cast<void>(UnpackEntry(reader.GetEntries()[i], i, {}, limit, progress, report));
    }
}

} // namespace

ExitCode RunList(const Arguments& arguments) {
    const auto work = [&](const std::string& file, std::span<const uint8_t> package) {
        Progress progress(file, package.size());
        const PackageReader reader(package);
        PackageReport report = MakeReport(file, package.size(), reader);
        MeasureEntries(reader, arguments.limit, progress, report);
        return report;
    };
    return ForEachPackage(arguments, work, [](const PackageReport& report) {
        return ReportTable(report) + ReportProblems(report);
    });
}

ExitCode RunVerify(const Arguments& arguments) {
    const auto work = [&](const std::string& file, std::span<const uint8_t> package) {
        Progress progress(file, 3 * package.size()); // the digests read it twice, unpacking once
        PackageReader reader(package);
        reader.CheckDigests([&](uint64_t bytes) { progress.Advance(bytes); });
        PackageReport report = MakeReport(file, package.size(), reader);
        MeasureEntries(reader, arguments.limit, progress, report);
        return report;
    };
    return ForEachPackage(arguments, work, [](const PackageReport& report) {
        return report.problems.empty()
                   ? Console::Printable(report.file) + ": good, " + std::to_string(report.entries.size()) +
                         (report.entries.size() == 1 ? " file\n" : " files\n")
                   : ReportProblems(report);
    });
}
