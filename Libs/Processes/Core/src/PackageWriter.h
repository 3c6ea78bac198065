#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "Libs/Processes/Core/src/ProcessConfigs.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_ResultCode.h"

// Bundles a prepared work folder into one package file. The same work folder always gives the same bytes.
// Lives on the packager's thread; the configuration (its folders resolved) outlives it.
class PackageWriter {
public:
    // keepWorkFolder is for a work folder that is the packaged folder.
    PackageWriter(const PackagerConfig& config, bool keepWorkFolder)
        : m_config(config), m_keepWorkFolder(keepWorkFolder) {}

    // Writes the package through to the disk, removes the work folder and marks the package as complete by
    // making it read-only. A finished package of the same bytes, left by a run that was cut short, is as good
    // as written.
    ResultCode Generate(const std::string& name) const;

private:
    ResultCode Compose(const std::string& workFolder, std::vector<uint8_t>& package) const;
    ResultCode RemoveWorkFolder(const std::string& workFolder) const;

    const PackagerConfig& m_config;
    bool m_keepWorkFolder;
};
