#include "Libs/Processes/Core/src/UploadPackageFile.h"

#include "Libs/Tarnel/Platform/src/Common/Platform_FileBytes.h"

std::string UploadPackagePath(const std::string& folder, const std::string& submissionFileName) {
    const char* const separator = folder.ends_with('\\') ? "" : "\\";
    return folder + separator + submissionFileName;
}

ResultCode LoadUploadPackage(const std::string& path, std::vector<uint8_t>& package) {
    switch (Platform::ReadWholeFile(path, package, Platform::ReadSharing::DenyWriters)) {
    case Platform::ReadOutcome::Done:
        return Platform::Success;
    case Platform::ReadOutcome::OpenFailed:
        return "Failed to open package file";
    case Platform::ReadOutcome::Empty:
        return "Failed to read package file of invalid size";
    case Platform::ReadOutcome::ReadFailed:
        break;
    }
    return "Failed to read package file";
}
