#include "Tools/PackageTool/src/TargetFolder.h"

#include "Libs/Framework/Core/src/PlatformHelpers.h"
#include "Libs/Processes/Core/src/FolderPath.h"

ResultCode EnsureTargetFolder(const std::string& folder) {
    return PlatformHelpers::EnsureFolderExists(FolderPath::Resolve(folder, "."));
}
