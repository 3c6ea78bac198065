#pragma once

#include <map>
#include <string>

#include "Libs/Framework/Core/src/ApplicationConfig.h"
#include "Libs/Processes/Cloud/src/UploaderS3Config.h"
#include "Libs/Processes/Core/src/DiskQuotaConfig.h"
#include "Libs/Processes/Core/src/PackagerConfig.h"
#include "Libs/Processes/Core/src/ProcessMonitorConfig.h"
#include "Libs/Processes/Core/src/WatcherConfig.h"
#include "Tools/PackageTool/src/ProcessClasses.h"
#include "Tools/PackageTool/src/RecordCheck.h"

// One process as the configuration names it.
struct ProcessInstance {
    const ProcessClass* processClass = nullptr;
    const JsonValue* name = nullptr; // where it is named
};

// A process's section with what was read from it.
template <class Config>
struct ConfigSection {
    const JsonValue* json = nullptr;
    Config config;

    // The value of that key, or the section where it is left out.
    const JsonValue& At(const char* key) const {
        const auto member = json->FindMember(key);
        return member == json->MemberEnd() ? *json : member->value;
    }
};
template <class Config>
using ConfigSectionMap = std::map<std::string, ConfigSection<Config>>;

// What a configuration says, as far as it can be understood; sections by their process's name. Points into
// the document.
struct ConfigSections {
    ApplicationConfig application;
    std::map<std::string, ProcessInstance> instances;
    ConfigSectionMap<WatcherConfig> watchers;
    ConfigSectionMap<PackagerConfig> packagers;
    ConfigSectionMap<UploaderS3Config> uploaders;
    ConfigSectionMap<DiskQuotaConfig> quotas;
    ConfigSectionMap<ProcessMonitorConfig> monitors;
};

// Reads all sections and reports what is wrong within each. The document is an object.
void ReadConfigSections(const JsonDocument& document, const RecordReport& report, ConfigSections& sections);

// Reports what does not fit between sections that were read.
void CheckPartners(const ConfigSections& sections, const RecordReport& report);
