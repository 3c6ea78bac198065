#include "Tools/PackageTool/src/ProcessClasses.h"

#include <algorithm>

#include "Libs/Processes/Cloud/src/UploaderS3Config.h"
#include "Libs/Processes/Core/src/ProcessConfigs.h"

// As the agent registers them.
std::span<const ProcessClass> ProcessClasses() {
    static constexpr ProcessClass Classes[] = {
        {"DiskQuota", &Reflection::TypeOf<DiskQuotaConfig>},
        {"Packager", &Reflection::TypeOf<PackagerConfig>},
        {"ProcessMonitor", &Reflection::TypeOf<ProcessMonitorConfig>},
        {"Shutdowner", nullptr},
        {"SingletonAssurance", nullptr},
        {"UploaderS3", &Reflection::TypeOf<UploaderS3Config>},
        {"Watcher", &Reflection::TypeOf<WatcherConfig>},
    };
    return Classes;
}

const ProcessClass* FindProcessClass(std::string_view name) {
    const auto classes = ProcessClasses();
    const auto found = std::find_if(classes.begin(), classes.end(),
                                    [&](const ProcessClass& known) { return known.name == name; });
    return found == classes.end() ? nullptr : &*found;
}

std::span<const std::string_view> ComponentClasses() {
    static constexpr std::string_view Classes[] = {"CloudComponent"};
    return Classes;
}
