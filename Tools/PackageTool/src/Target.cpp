#include "Tools/PackageTool/src/Target.h"

#include <random>

#include "Libs/Framework/Core/src/PlatformHelpers.h"
#include "Libs/Processes/Core/src/FolderPath.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Folder.h"

namespace Target {

ResultCode EnsureFolder(const std::string& folder) {
    // EnsureFolderExists takes the first part of a path for a drive and does not create it.
    return PlatformHelpers::EnsureFolderExists(FolderPath::Resolve(folder, "."));
}

std::string TemporaryPath(const std::string& folder) {
    std::random_device random;
    return FolderPath::Join(folder, "PackageTool-" + std::to_string(random()) + ".tmp");
}

ResultCode Replace(const std::string& newFile, const std::string& path) {
    PlatformHelpers::FileStatus old;
    const bool wasReadOnly = PlatformHelpers::PathExists(path) && !Platform::IsLink(path) &&
                             PlatformHelpers::QueryFileStatus(path, old).Succeeded() && old.isReadOnly;
    if (wasReadOnly) { // Windows replaces no read-only file
        RETURN_IF_FAILED(PlatformHelpers::MakeFileWritable(path));
    }
    if (Platform::RenameFile(newFile, path) == Platform::NoError) {
        return Platform::Success;
    }
    if (wasReadOnly) {
        static_cast<void>(PlatformHelpers::MakeFileReadOnly(path)); // logs a failure
    }
    return "Failed to replace the file";
}

} // namespace Target
