#include "Tools/PackageTool/src/Unpack.h"

#include <algorithm>
#include <span>
#include <utility>

#include "Libs/Framework/Core/src/PlatformHelpers.h"
#include "Libs/Processes/Core/src/AttachmentName.h"
#include "Libs/Processes/Core/src/BugHeader.h"
#include "Libs/Processes/Core/src/FolderPath.h"
#include "Libs/Processes/Core/src/PackageFormat.h"
#include "Tools/PackageTool/src/Report.h"
#include "Tools/PackageTool/src/Target.h"

namespace {

// game.log and 2 give game~2.log.
std::string Numbered(const std::string& name, unsigned number) {
    const std::size_t fileStart = name.find_last_of("\\/") + 1; // npos + 1 is 0
    const std::size_t dot = name.find_last_of('.');
    const std::size_t end = dot == std::string::npos || dot <= fileStart ? name.size() : dot;
    return name.substr(0, end) + "~" + std::to_string(number) + name.substr(end);
}

// submission.pkg gives submission; a name that is taken gets a number.
std::string SubFolder(const std::string& file, std::set<std::string>& taken) {
    std::string name = file == "-" ? "stdin" : FolderPath::LastComponent(file).value_or("package");
    name.resize(name.ends_with(".pkg") && name.size() > 4 ? name.size() - 4 : name.size());
    std::string candidate = name;
    for (unsigned number = 2; !taken.insert(candidate).second; ++number) {
        candidate = name + "~" + std::to_string(number);
    }
    return candidate;
}

// Unpacks one package into its folder.
class Unpacking {
public:
    Unpacking(const Arguments& arguments, const std::string& folder, Platform::ByteSource& package,
              const PackageReader& reader, PackageReport& report, Progress& progress)
        : m_arguments(arguments), m_folder(folder, arguments.force), m_package(package), m_reader(reader),
          m_report(report), m_progress(progress), m_limit(arguments.limit) {}

    void Run() {
        if (const uint64_t size = m_reader.GetHeaderSize(); size > 0) {
            std::string path;
            const auto fill = [&](const ContentSink& write) {
                return Platform::ForEachPiece(m_package, PackageFormat::PrefixSize, size, write).Succeeded();
            };
            Note(PackageFormat::PrefixSize, HeaderFile::Name, m_folder.Write(HeaderFile::Name, fill, path));
        }
        for (std::size_t i = 0; i < m_reader.GetEntries().size(); ++i) {
            Unpack(m_reader.GetEntries()[i], i);
        }
    }

    bool HasWriteFailed() const { return m_hasFailed; }

private:
    void Unpack(const PackageEntry& entry, std::size_t index) {
        bool isWhole = true;
        const auto fill = [&](const ContentSink& write) {
            if (m_arguments.stored) {
                m_progress.Advance(entry.size);
                return Platform::ForEachPiece(m_package, entry.DataOffset(), entry.size, write).Succeeded();
            }
            return isWhole = UnpackEntry(m_package, entry, index, write, m_limit, m_progress, m_report);
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
    Platform::ByteSource& m_package;
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

// Empty, or the reason why nothing of the file is there.
std::string WriteNew(const std::string& path, const UnpackFolder::Fill& fill) {
    Platform::File file;
    if (file.Open(path, Platform::FileWrite | Platform::FileCreateNew) != Platform::NoError) {
        return "Failed to create the file";
    }
    bool isWritten = true;
    uint64_t size = 0;
    const bool isFilled = fill([&](std::span<const uint8_t> piece) {
        isWritten = file.Write(size, piece) == Platform::NoError;
        size += piece.size();
        return isWritten ? Platform::Success : ResultCode("The unpacked content was refused");
    });
    isWritten = file.Close() && isWritten;
    if (isWritten && isFilled) {
        return {};
    }
    static_cast<void>(PlatformHelpers::RemoveFile(path)); // logs a failure
    return isWritten ? UnpackFolder::NotWhole : "Failed to write the file";
}

} // namespace

ExitCode RunUnpack(const Arguments& arguments) {
    std::set<std::string> taken;
    bool hasWriteFailed = false;
    const auto work = [&](const std::string& file, Platform::ByteSource& package) {
        Progress progress(file, 2 * package.GetSize());
        PackageReader reader(package);
        reader.CheckDigests([&](uint64_t bytes) { progress.Advance(bytes); });
        PackageReport report = MakeReport(file, package, reader);
        const std::string folder = arguments.files.size() == 1
                                       ? arguments.to
                                       : FolderPath::Join(arguments.to, SubFolder(file, taken));
        Unpacking unpacking(arguments, folder, package, reader, report, progress);
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

std::string UnpackFolder::Write(const std::string& name, const Fill& fill, std::string& path) {
    path.clear();
    if (!IsSafeAttachmentName(name)) {
        return "The name is not safe";
    }
    const std::string freeName = FreeName(name);
    const std::string target = FolderPath::Join(m_folder, freeName);
    bool exists = false;
    std::string reason = MakeFolders(freeName);
    if (reason.empty()) {
        reason = CheckTarget(target, exists);
    }
    if (reason.empty() && !exists) {
        reason = WriteNew(target, fill);
    } else if (reason.empty()) {
        const std::string aside = Target::TemporaryPath(m_folder);
        reason = WriteNew(aside, fill);
        if (reason.empty() && !Target::Replace(aside, target)) {
            reason = "Failed to replace the file";
            static_cast<void>(PlatformHelpers::RemoveFile(aside)); // logs a failure
        }
    }
    if (reason.empty()) {
        path = target;
        m_written.push_back(target);
    }
    return reason;
}

std::string UnpackFolder::FreeName(const std::string& name) {
    const auto [given, isNew] = m_given.emplace(Console::Folded(name), 2);
    std::string candidate = name;
    for (bool isFree = isNew; !isFree; isFree = m_given.emplace(Console::Folded(candidate), 2).second) {
        candidate = Numbered(name, given->second++);
    }
    return candidate;
}

std::string UnpackFolder::MakeFolders(const std::string& name) const {
    if (!Target::EnsureFolder(m_folder)) {
        return "Failed to create the folder";
    }
    for (std::size_t end = name.find_first_of("\\/"); end != std::string::npos;
         end = name.find_first_of("\\/", end + 1)) {
        const std::string folder = FolderPath::Join(m_folder, name.substr(0, end));
        if (Platform::IsLink(folder)) {
            return "A link lies on the way";
        }
        PlatformHelpers::FileStatus status;
        const bool isThere = PlatformHelpers::PathExists(folder);
        if (isThere ? !PlatformHelpers::QueryFileStatus(folder, status) || !status.isFolder
                    : !PlatformHelpers::EnsureFolderExists(folder).Succeeded()) {
            return "Failed to create the folder";
        }
    }
    return {};
}

// Empty if a file may be written there, in place of one that exists or not.
std::string UnpackFolder::CheckTarget(const std::string& target, bool& exists) {
    exists = PlatformHelpers::PathExists(target);
    if (!exists) {
        return {};
    }
    if (!m_mayReplace || IsOurs(target)) {
        return "There is already a file of that name";
    }
    PlatformHelpers::FileStatus status;
    if (!Platform::IsLink(target) && (!PlatformHelpers::QueryFileStatus(target, status) || status.isFolder)) {
        return "There is already a folder of that name";
    }
    return {};
}

// Files of this package whose names are one name to the system, such as Ä.log and ä.log, must not replace
// each other. Asked only for existing targets; each file is looked at once.
bool UnpackFolder::IsOurs(const std::string& target) {
    Platform::FileIdentity identity;
    for (const std::string& written : m_written) {
        if (Platform::QueryIdentity(written, identity) == Platform::NoError) {
            m_identities.insert(identity);
        }
    }
    m_written.clear();
    return Platform::QueryIdentity(target, identity) == Platform::NoError && m_identities.contains(identity);
}
