#include <functional>
#include <set>

#include "Libs/Processes/Core/src/FolderPath.h"
#include "Libs/Processes/Core/src/HeaderFile.h"
#include "Libs/Processes/Core/src/PackageFormat.h"
#include "Tools/PackageTool/src/Commands.h"
#include "Tools/PackageTool/src/ForEachPackage.h"
#include "Tools/PackageTool/src/Progress.h"
#include "Tools/PackageTool/src/UnpackFolder.h"

namespace {

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
            Note(PackageFormat::PrefixSize, HeaderFile::Name,
                 m_folder.Write(
                     HeaderFile::Name, [&](const auto& write) { return write(m_reader.GetHeaderBytes()); },
                     path));
        }
        for (std::size_t i = 0; i < m_reader.GetEntries().size(); ++i) {
            Unpack(m_reader.GetEntries()[i], i);
        }
    }

    bool HasWriteFailed() const { return m_hasFailed; }

private:
    void Unpack(const PackageEntry& entry, std::size_t index) {
        bool isWhole = true;
        const auto fill = [&](const std::function<bool(UnpackFolder::Piece)>& write) {
            if (m_arguments.stored) {
                m_progress.Advance(entry.data.size());
                return write(entry.data);
            }
            return isWhole = UnpackEntry(entry, index, write, m_limit, m_progress, m_report);
        };
        std::string name = entry.name.empty() ? "entry-" + std::to_string(index + 1) : entry.name;
        name += m_arguments.stored ? ".gz" : "";
        const std::string reason = m_folder.Write(name, fill, m_report.entries[index].path);
        if (isWhole || reason != UnpackFolder::NotWhole) { // else the report has the reason already
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

std::string ProblemText(const ReportedProblem& problem) {
    return "offset " + std::to_string(problem.offset) + ": " + problem.text;
}

std::string UnpackText(const PackageReport& report) {
    std::string text;
    for (const ReportedEntry& entry : report.entries) {
        text += entry.path.empty() ? "" : Console::Printable(entry.path) + "\n";
    }
    return text;
}

} // namespace

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
            Console::PrintError(report.file, ProblemText(problem));
        }
        return UnpackText(report);
    };
    ExitCode code = ForEachPackage(arguments, work, say);
    if (hasWriteFailed) {
        Raise(code, ExitCode::NotReadOrWritten);
    }
    return code;
}
