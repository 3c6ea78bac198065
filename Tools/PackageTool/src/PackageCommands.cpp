#include <algorithm>
#include <functional>
#include <set>

#include "Libs/Processes/Core/src/FolderPath.h"
#include "Libs/Processes/Core/src/HeaderFile.h"
#include "Tools/PackageTool/src/Commands.h"
#include "Tools/PackageTool/src/PackageReport.h"
#include "Tools/PackageTool/src/Progress.h"
#include "Tools/PackageTool/src/UnpackFolder.h"

namespace {

using Work = std::function<PackageReport(const std::string& file, std::span<const uint8_t> package)>;
using Say = std::function<std::string(const PackageReport& report)>;

// Reads each package, has the work done, and says what came of it: as text at once, as JSON at the end.
ExitCode ForEachPackage(const Arguments& arguments, const Work& work, const Say& say) {
    ExitCode code = ExitCode::Good;
    PackageReports reports;
    for (const std::string& file : arguments.files) {
        std::vector<uint8_t> package;
        std::string reason;
        if (!Console::ReadInput(file, package, reason)) {
            Console::PrintError(file + ": " + reason);
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

// Notes the size of what each entry holds.
void MeasureEntries(const PackageReader& reader, uint64_t limit, Progress& progress, PackageReport& report) {
    const auto count = [&](std::span<const uint8_t>) {
        progress.Advance(0);
        return true;
    };
    for (std::size_t i = 0; i < reader.GetEntries().size(); ++i) {
        const PackageEntry& entry = reader.GetEntries()[i];
        static_cast<void>(UnpackEntry(entry, i, count, limit, report)); // the report has its problem
        progress.Advance(entry.data.size());
    }
}

// submission.pkg gives submission; a name that was taken before gets a number.
std::string SubFolder(const std::string& file, std::set<std::string>& taken) {
    std::string name = file == "-" ? "stdin" : FolderPath::LastComponent(file).value_or("package");
    name.resize(name.ends_with(".pkg") && name.size() > 4 ? name.size() - 4 : name.size());
    std::string candidate = name;
    for (unsigned number = 2; !taken.insert(candidate).second; ++number) {
        candidate = name + "~" + std::to_string(number);
    }
    return candidate;
}

// Unpacks one package into one folder.
class Unpacking {
public:
    Unpacking(const Arguments& arguments, const std::string& folder, const PackageReader& reader,
              PackageReport& report, Progress& progress)
        : m_arguments(arguments), m_folder(folder, arguments.force), m_reader(reader), m_report(report),
          m_progress(progress), m_limit(arguments.limit) {}

    void Run() {
        if (!m_reader.GetHeaderBytes().empty()) {
            std::string path;
            Note(48, HeaderFile::Name,
                 m_folder.Write(
                     HeaderFile::Name, [&](const auto& write) { return write(m_reader.GetHeaderBytes()); },
                     path));
        }
        for (std::size_t i = 0; i < m_reader.GetEntries().size(); ++i) {
            const PackageEntry& entry = m_reader.GetEntries()[i];
            Unpack(entry, i);
            m_progress.Advance(entry.data.size());
        }
    }

    bool HasWriteFailed() const { return m_hasFailed; }

private:
    void Unpack(const PackageEntry& entry, std::size_t index) {
        bool isWhole = true;
        const auto fill = [&](const std::function<bool(UnpackFolder::Piece)>& write) {
            if (m_arguments.stored) {
                return write(entry.data);
            }
            const auto sink = [&](UnpackFolder::Piece piece) {
                m_progress.Advance(0);
                return write(piece);
            };
            return isWhole = UnpackEntry(entry, index, sink, m_limit, m_report);
        };
        std::string name = entry.name.empty() ? "entry-" + std::to_string(index + 1) : entry.name;
        name += m_arguments.stored ? ".gz" : "";
        const std::string reason = m_folder.Write(name, fill, m_report.entries[index].path);
        if (isWhole) { // else the report has the reason already
            Note(entry.offset, name, reason);
        }
    }

    void Note(uint64_t offset, const std::string& name, const std::string& reason) {
        if (!reason.empty()) {
            m_report.problems.push_back({offset, "\"" + name + "\" was not unpacked: " + reason});
            m_hasFailed = true;
        }
    }

    const Arguments& m_arguments;
    UnpackFolder m_folder;
    const PackageReader& m_reader;
    PackageReport& m_report;
    Progress& m_progress;
    uint64_t m_limit;
    bool m_hasFailed = false;
};

std::string UnpackText(const PackageReport& report) {
    std::string text;
    for (const ReportedEntry& entry : report.entries) {
        text += entry.path.empty() ? "" : Console::Printable(entry.path) + "\n";
    }
    return text;
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
                   ? report.file + ": good, " + std::to_string(report.entries.size()) + " files\n"
                   : ReportProblems(report);
    });
}

ExitCode RunUnpack(const Arguments& arguments) {
    std::set<std::string> taken;
    bool hasWriteFailed = false;
    const auto work = [&](const std::string& file, std::span<const uint8_t> package) {
        Progress progress(file, 3 * package.size());
        PackageReader reader(package);
        reader.CheckDigests([&](uint64_t bytes) { progress.Advance(bytes); });
        PackageReport report = MakeReport(file, package.size(), reader);
        const std::string folder = arguments.files.size() == 1
                                       ? arguments.to
                                       : FolderPath::Join(arguments.to, SubFolder(file, taken));
        Unpacking unpacking(arguments, folder, reader, report, progress);
        unpacking.Run();
        hasWriteFailed = hasWriteFailed || unpacking.HasWriteFailed();
        return report;
    };
    const auto say = [](const PackageReport& report) {
        for (const ReportedProblem& problem : report.problems) {
            Console::PrintError(report.file + ": offset " + std::to_string(problem.offset) + ": " +
                                Console::Printable(problem.text));
        }
        return UnpackText(report);
    };
    ExitCode code = ForEachPackage(arguments, work, say);
    if (hasWriteFailed) {
        Raise(code, ExitCode::NotReadOrWritten);
    }
    return code;
}
