#pragma once

#include <string>

#include "Libs/Processes/Core/src/ProcessConfigs.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_ResultCode.h"

// Read-only marks a package as finished.
bool IsFinishedPackage(const std::string& path);

// Bundles a prepared work folder into one package file, which goes through memory in pieces. The same work
// folder always gives the same bytes.
// Lives on the packager's thread; the configuration (its folders resolved) outlives it.
class PackageWriter {
public:
    // keepWorkFolder is for a work folder that is the packaged folder.
    PackageWriter(const PackagerConfig& config, bool keepWorkFolder)
        : m_config(config), m_keepWorkFolder(keepWorkFolder) {}

    // Writes the package through to the disk, removes the work folder and makes the package read-only. A
    // finished package of the same bytes, left by a run that was cut short, is as good as written. A failure
    // leaves no part of a package and no folder made for it.
    ResultCode Generate(const std::string& name) const;

private:
    ResultCode WriteAndFinish(const std::string& path, const std::string& workFolder) const;

    const PackagerConfig& m_config;
    bool m_keepWorkFolder;
};
