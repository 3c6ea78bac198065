#include "Tools/PackageTool/src/Pack.h"

#include "Libs/Framework/Core/src/PlatformHelpers.h"
#include "Libs/Processes/Core/src/AttachmentBlacklist.h"
#include "Libs/Processes/Core/src/FolderPath.h"
#include "Libs/Processes/Core/src/PackageWriter.h"
#include "Libs/Processes/Core/src/SubmissionPackager.h"
#include "Libs/Shared/src/JsonConfig.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Path.h"
#include "Tools/PackageTool/src/Console.h"
#include "Tools/PackageTool/src/Target.h"

namespace {

// This run's own folder, beside the packages to come; deleted at the end.
class WorkFolder {
public:
    explicit WorkFolder(const std::string& target) : m_path(Target::TemporaryPath(target)) {}
    ~WorkFolder() {
        if (PlatformHelpers::PathExists(m_path)) {
            static_cast<void>(PlatformHelpers::RemoveFolder(m_path)); // logs a failure
        }
    }
    WorkFolder(const WorkFolder&) = delete; // one removal
    WorkFolder& operator=(const WorkFolder&) = delete;

    const std::string& Path() const { return m_path; }

private:
    const std::string m_path;
};

// "." and the like become the full path, whose last part is the folder's name.
std::string WithName(const std::string& folder) {
    return FolderPath::LastComponent(folder) ? folder : Platform::FullPath(folder);
}

// The package is made in the work folder, so that one that can't be made whole replaces nothing.
std::string Pack(const std::string& folder, const PackagerConfig& config,
                 const AttachmentBlacklist& blacklist, const Arguments& arguments, std::string& package) {
    const std::string name = FolderPath::LastComponent(folder).value_or("");
    if (name.empty()) {
        return SubmissionFault::NoName;
    }
    package = FolderPath::Join(FolderPath::Join(arguments.to, name), config.submissionFilename);
    if (!arguments.force && PlatformHelpers::PathExists(package)) {
        return "There is already a package at " + package;
    }
    std::string preparedName;
    JsonProblem headerProblem;
    ResultCode result = SubmissionPackager(config, blacklist).Prepare(folder, preparedName, headerProblem);
    if (!headerProblem.text.empty()) {
        return result.Text() + (" " + headerProblem.WithPlace());
    }
    if (result) {
        result = PackageWriter(config, false).Generate(preparedName);
    }
    if (result) {
        result = Target::EnsureFolder(FolderPath::Join(arguments.to, name));
    }
    if (result) {
        const std::string made = FolderPath::Join(config.packagedFolder, preparedName);
        result = Target::Replace(FolderPath::Join(made, config.submissionFilename), package);
    }
    return result ? "" : result.Text();
}

} // namespace

bool PackagerSettings::Read(const Arguments& arguments) {
    if (!arguments.config.empty()) {
        JsonDocument document;
        const std::string section = arguments.packager.empty() ? "Packager" : arguments.packager;
        ResultCode result = LoadJsonConfig(arguments.config, document);
        if (result) {
            result = ReadConfigSection(document, section.c_str(), config);
        }
        AttachmentBlacklist::BadPattern bad;
        if (result) {
            result = blacklist.Compile(config.attachmentBlacklist, bad);
        }
        if (!result) {
            const std::string pattern =
                bad.pattern.empty() ? "" : ": \"" + bad.pattern + "\", " + bad.message;
            Console::PrintError(arguments.config, "section \"" + section + "\": " + result.Text() + pattern);
            return false;
        }
        // Without one the defaults stay: what a packager needs, check-config says.
        static_cast<void>(ReadConfigSection(document, config.watcherName.c_str(), watcher));
    }
    config.submissionFilename = PackageName(config.submissionFilename);
    return true;
}

ExitCode RunPack(const Arguments& arguments) {
    PackagerSettings settings;
    if (!settings.Read(arguments)) {
        return ExitCode::NotReadOrWritten;
    }
    PackagerConfig& config = settings.config;
    if (!Target::EnsureFolder(arguments.to)) {
        Console::PrintError(arguments.to, "Failed to create the folder");
        return ExitCode::NotReadOrWritten;
    }
    const WorkFolder work(arguments.to);
    config.packagedFolder = FolderPath::Join(work.Path(), "packages");
    config.packageWorkFolder = FolderPath::Join(work.Path(), "prepared");
    ExitCode code = ExitCode::Good;
    for (const std::string& folder : arguments.files) {
        std::string package;
        const std::string reason = Pack(WithName(folder), config, settings.blacklist, arguments, package);
        if (reason.empty()) {
            Console::Print(Console::Printable(package) + "\n");
        } else {
            Console::PrintError(folder, reason);
            Raise(code, ExitCode::NotReadOrWritten);
        }
    }
    return code;
}
