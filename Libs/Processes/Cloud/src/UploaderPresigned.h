#pragma once

#include <cstdint>
#include <string>

#include "Libs/Processes/Core/src/ProcessConfigs.h"
#include "Libs/Processes/Core/src/UploaderBase.h"
#include "Libs/Tarnel/Reflection/src/Reflection_Declaration.h"

// Uploads what its watcher finds to addresses that the studio's signer gives, one for each package, so that
// no key is on the player's disk. Needs no component. Owned and initialised as every process is.
class UploaderPresigned : public Reflected<UploaderPresigned, UploaderBase> {
public:
    using Reflected::Reflected;

    // Fails without the section, one of its required keys or the watcher process, and with a signer that
    // could not be asked.
    ResultCode Initialize(const JsonDocument& config, int argc, const char** argv) override;
    void StartUploadThread(const std::string& folder, UploadPermission permission) override;
    uint32_t GetTimeBetweenChecks() const override { return m_config.timeBetweenChecks; }

private:
    UploaderPresignedConfig m_config; // constant after Initialize
};
Reflection_DeclarePolymorphicType(UploaderPresigned);
