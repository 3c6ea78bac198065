#include <algorithm>
#include <set>

#include "Libs/Framework/Core/src/PlatformHelpers.h"
#include "Libs/Processes/Core/src/AttachmentLimit.h"
#include "Libs/Processes/Core/src/AttachmentName.h"
#include "Libs/Processes/Core/src/FolderPath.h"
#include "Libs/Processes/Core/src/FolderScan.h"
#include "Libs/Processes/Core/src/SubmissionFolder.h"
#include "Tools/PackageTool/src/Pack.h"

namespace {

// Checks one folder by the decisions that the watcher and the packager take.
class DumpCheck {
public:
    DumpCheck(const PackagerSettings& settings, const std::string& folder)
        : m_settings(settings), m_path(folder), m_folder(folder) {}

    ExitCode Run() {
        BugHeader header;
        CheckSentinel();
        if (ReadHeader(header)) {
            CheckFile(header.catalog.dump.file);
            CheckFile(header.catalog.log.file);
            for (const Attachment& attachment : header.catalog.attachments) {
                CheckAttachment(attachment.file);
            }
            WarnOfOthers();
        }
        if (m_code == ExitCode::Good) {
            Console::Print(Console::Printable(m_path) + ": good, " + Console::Count(m_files, "file") + "\n");
        }
        return m_code;
    }

private:
    void CheckSentinel() {
        const std::string& sentinel = m_settings.watcher.sentinelFile;
        const std::string path = FolderPath::Join(m_path, sentinel);
        if (FolderScan::IsComplete(m_path, sentinel)) {
            m_named.insert({Console::Folded(sentinel), Console::Folded(sentinel) + ".gz"});
        } else if (PlatformHelpers::PathExists(path) || PlatformHelpers::PathExists(path + ".gz")) {
            Say(sentinel, "is writable: the agent takes the folder once this file is read-only");
        } else {
            Say(sentinel, "is missing: the agent does not take the folder");
        }
        PlatformHelpers::FileStatus status;
        if (m_settings.watcher.ignoreReadOnlyFolders &&
            PlatformHelpers::QueryFileStatus(m_path, status).Succeeded() && status.isReadOnly) {
            Say("", "The folder is read-only, and the watcher has IgnoreReadOnlyFolders");
        }
    }

    bool ReadHeader(BugHeader& header) {
        m_named.insert(HeaderFile::Name);
        JsonProblem problem;
        const ResultCode result = m_folder.ReadHeader(header, problem);
        if (!result && problem.text.empty()) {
            Say(HeaderFile::Name, result.Text());
        } else if (!result) {
            const auto& [line, column] = problem.position;
            Print(FolderPath::Join(m_path, HeaderFile::Name) + ":" + std::to_string(line) + ":" +
                      std::to_string(column) + ": " + problem.text,
                  ExitCode::ProblemsFound);
        }
        return result.Succeeded();
    }

    void CheckAttachment(const std::string& name) {
        const bool canBeJudged = name.size() <= MaxAttachmentNameLength;
        if (canBeJudged && m_settings.blacklist.Judge(name) != AttachmentBlacklist::Verdict::Allowed) {
            Warn(name, "is left out: the blacklist has it");
            m_named.insert({Console::Folded(name), Console::Folded(name) + ".gz"});
        } else {
            CheckFile(name);
        }
    }

    void CheckFile(const std::string& name) {
        if (name.empty()) {
            return; // the record names no file
        }
        if (!IsSafeAttachmentName(name)) {
            Say(name, "is refused: no plain relative path of at most 512 bytes");
            return;
        }
        m_named.insert({Console::Folded(name), Console::Folded(name) + ".gz"});
        SubmissionFolder::FoundAttachment found;
        if (const ResultCode result = m_folder.OpenAttachment(name, found); !result) {
            Say(name, result.Text());
        } else if (LooksCompressed(name)) {
            Say(name, "loses the whole submission: name no file \"...gz\" without a dot before it");
        } else if (!found.isCompressed) {
            WarnOfLimit(name, found.file.GetSize());
        }
        ++m_files;
    }

    void WarnOfLimit(const std::string& name, uint64_t size) {
        const std::vector<AttachmentLimit>& limits = m_settings.config.attachmentLimits;
        if (!IsAttachmentOverSizeLimit(limits, name, size)) {
            return;
        }
        if (const uint64_t limit = FindAttachmentSizeLimit(limits, name); size > limit) {
            Warn(name, "is cut from " + std::to_string(size) + " to " + std::to_string(limit) + " bytes");
        }
    }

    void WarnOfOthers() {
        std::vector<std::string> files;
        if (!Console::ListFiles(m_path, files)) {
            Say("", "The folder could not be listed");
        }
        for (const std::string& file : files) {
            if (!m_named.contains(Console::Folded(file))) {
                Warn(file, "is not in the catalog and is not sent");
            }
        }
    }

    void Say(const std::string& name, const std::string& text) {
        Print(m_path + ": " + (name.empty() ? "" : "\"" + name + "\": ") + text, ExitCode::ProblemsFound);
    }

    void Warn(const std::string& name, const std::string& text) {
        Print(m_path + ": warning: \"" + name + "\": " + text, ExitCode::OnlyWarnings);
    }

    void Print(const std::string& line, ExitCode code) {
        Console::Print(Console::Printable(line) + "\n");
        Raise(m_code, code);
    }

    const PackagerSettings& m_settings;
    const std::string m_path;
    const SubmissionFolder m_folder;
    std::set<std::string> m_named; // folded
    std::size_t m_files = 0;
    ExitCode m_code = ExitCode::Good;
};

} // namespace

ExitCode RunCheckDump(const Arguments& arguments) {
    PackagerSettings settings;
    if (!settings.Read(arguments)) {
        return ExitCode::NotReadOrWritten;
    }
    ExitCode code = ExitCode::Good;
    for (const std::string& folder : arguments.files) {
        if (Console::IsFolder(folder)) {
            Raise(code, DumpCheck(settings, folder).Run());
        } else {
            Console::PrintError(folder, "There is no such folder");
            Raise(code, ExitCode::NotReadOrWritten);
        }
    }
    return code;
}
