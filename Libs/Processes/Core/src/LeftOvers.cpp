#include "Libs/Processes/Core/src/LeftOvers.h"

#include "Libs/Framework/Core/src/PlatformHelpers.h"
#include "Libs/Processes/Core/src/FolderPath.h"
#include "Libs/Processes/Core/src/FolderScan.h"
#include "Libs/Processes/Core/src/PackageWriter.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Folder.h"

namespace LeftOvers {

namespace {

bool IsHalfPackage(const Platform::SystemText& name, const Platform::FileInfo& info,
                   const Platform::SystemText& packageName) {
    return name == packageName && !info.IsFolder() && !info.IsReadOnly() && !info.IsLink();
}

bool HoldsNothingElse(const Platform::SystemPath& folder, const Platform::SystemText& packageName) {
    Platform::FolderListing listing(folder);
    while (listing.Next()) {
        if (!IsHalfPackage(listing.Name(), listing.Info(), packageName)) {
            return false;
        }
    }
    return listing.Error() == Platform::NoError;
}

// Deletes that one file and then the empty folder, so that the folder stays if another file comes meanwhile.
void RemoveHalfPackages(const Platform::SystemPath& folder, const Platform::SystemText& packageName) {
    Platform::FolderListing listing(folder);
    while (listing.Next()) {
        const Platform::SystemPath subFolder = folder.Below(listing.Name());
        if (listing.Info().IsFolder() && !listing.Info().IsLink() &&
            HoldsNothingElse(subFolder, packageName)) {
            static_cast<void>(Platform::RemoveFile(subFolder.Below(packageName)));
            static_cast<void>(Platform::RemoveEmptyFolder(subFolder));
        }
    }
}

// Looks for the folders of finished packages. Once its package is sent, nobody could tell what a deletion
// left from a crash that the game is still writing.
void RemovePackagedDumps(const PackagerConfig& config, const std::string& dumpsFolder,
                         const std::string& sentinelFile) {
    Platform::FolderListing listing(config.packagedFolder);
    while (listing.Next()) {
        std::string name;
        if (!listing.Info().IsFolder() || Platform::ToUtf8(listing.Name(), name) != Platform::NoError) {
            continue;
        }
        const std::string folder = FolderPath::Join(dumpsFolder, name);
        const std::string package =
            FolderPath::Join(FolderPath::Join(config.packagedFolder, name), config.submissionFilename);
        if (IsFinishedPackage(package) && Platform::Exists(folder) && !Platform::IsLink(folder) &&
            !FolderScan::IsComplete(folder, sentinelFile)) {
            static_cast<void>(PlatformHelpers::RemoveFolder(folder)); // logs a failure
        }
    }
}

} // namespace

void Remove(const PackagerConfig& config, const std::string& dumpsFolder, const std::string& sentinelFile) {
    Platform::SystemText packageName;
    if (Platform::ToSystemText(config.submissionFilename, packageName) != Platform::NoError) {
        return; // no package can have that name
    }
    if (!dumpsFolder.empty()) {
        RemovePackagedDumps(config, dumpsFolder, sentinelFile);
    }
    RemoveHalfPackages(config.packagedFolder, packageName);
    RemoveHalfPackages(config.packageWorkFolder, packageName);
}

} // namespace LeftOvers
