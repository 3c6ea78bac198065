#include <filesystem>
#include <random>

#include "Libs/Framework/Core/src/PlatformHelpers.h"
#include "Libs/Processes/Core/src/AttachmentBlacklist.h"
#include "Libs/Processes/Core/src/FolderPath.h"
#include "Libs/Processes/Core/src/PackageWriter.h"
#include "Libs/Processes/Core/src/SubmissionPackager.h"
#include "Libs/Shared/src/JsonConfig.h"
#include "Tools/PackageTool/src/Commands.h"
#include "Tools/PackageTool/src/TargetFolder.h"

namespace {

// A folder of this run alone, beside the packages to come; gone afterwards.
class WorkFolder {
public:
    explicit WorkFolder(const std::string& target) {
        std::random_device random;
        m_path = FolderPath::Join(target, "PackageTool-" + std::to_string(random()) + ".tmp");
    }
    ~WorkFolder() {
        if (PlatformHelpers::PathExists(m_path)) {
            static_cast<void>(PlatformHelpers::RemoveFolder(m_path)); // logs a failure
        }
    }
    WorkFolder(const WorkFolder&) = delete; // one removal
    WorkFolder& operator=(const WorkFolder&) = delete;

    const std::string& Path() const { return m_path; }

private:
    std::string m_path;
};

// Limits, black list and source of a packager's section; without a configuration its defaults.
bool ReadPackagerConfig(const Arguments& arguments, PackagerConfig& config, AttachmentBlacklist& blacklist) {
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
    }
    config.submissionFilename =
        config.submissionFilename.empty() ? "submission.pkg" : config.submissionFilename;
    return true;
}

// Empty when nothing stands in the way of the package.
std::string MakeWay(const std::string& path, bool mayReplace) {
    if (!PlatformHelpers::PathExists(path)) {
        return {};
    }
    if (!mayReplace) {
        return "There is already a package at " + path;
    }
    return PlatformHelpers::MakeFileWritable(path) && PlatformHelpers::RemoveFile(path)
               ? ""
               : "Failed to replace the package at " + path;
}

// A folder named by dots, which say nothing of its name, becomes its full path.
std::string WithName(const std::string& folder) {
    if (FolderPath::LastComponent(folder)) {
        return folder;
    }
    std::error_code failure;
    const std::filesystem::path full = std::filesystem::absolute(folder, failure);
    return failure ? folder : full.lexically_normal().string();
}

std::string Pack(const std::string& folder, const PackagerConfig& config,
                 const AttachmentBlacklist& blacklist, bool mayReplace, std::string& package) {
    const std::string name = FolderPath::LastComponent(folder).value_or("");
    if (name.empty()) {
        return "Failed to find submission folder name in folder path";
    }
    package = FolderPath::Join(FolderPath::Join(config.packagedFolder, name), config.submissionFilename);
    if (std::string reason = MakeWay(package, mayReplace); !reason.empty()) {
        return reason;
    }
    std::string preparedName;
    if (const ResultCode result = SubmissionPackager(config, blacklist).Prepare(folder, preparedName);
        !result) {
        return result.Text();
    }
    const ResultCode result = PackageWriter(config, false).Generate(preparedName);
    return result ? "" : result.Text();
}

} // namespace

ExitCode RunPack(const Arguments& arguments) {
    PackagerConfig config;
    AttachmentBlacklist blacklist;
    if (!ReadPackagerConfig(arguments, config, blacklist)) {
        return ExitCode::NotReadOrWritten;
    }
    if (!EnsureTargetFolder(arguments.to)) {
        Console::PrintError(arguments.to, "Failed to create the folder");
        return ExitCode::NotReadOrWritten;
    }
    const WorkFolder work(arguments.to);
    config.packagedFolder = arguments.to;
    config.packageWorkFolder = work.Path();
    ExitCode code = ExitCode::Good;
    for (const std::string& folder : arguments.files) {
        std::string package;
        const std::string reason = Pack(WithName(folder), config, blacklist, arguments.force, package);
        if (reason.empty()) {
            Console::Print(Console::Printable(package) + "\n");
        } else {
            Console::PrintError(folder, reason);
            Raise(code, ExitCode::NotReadOrWritten);
        }
    }
    return code;
}
