#include "Libs/Framework/Core/src/ApplicationCreation.h"

#include "Libs/Framework/Core/src/ExceptionToResult.h"
#include "Libs/Framework/Core/src/Factory.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Log.h"

namespace {

ResultCode CreateComponent(const std::string& name, ComponentMap& components) {
    const auto maker = FactoryInstance<IApplicationComponent>().FindMaker(name);
    if (!maker) {
        PLATFORM_LOG(Platform::ErrorLog, " Failed to find maker for component %s", name.c_str());
        return "Failed to find maker for component";
    }
    return ExceptionToResult([&]() -> ResultCode {
        components[name] = maker->Make();
        return Platform::Success;
    });
}

ResultCode CreateProcess(const std::string& makerName, const std::string& name, ApplicationBase* application,
                         ProcessMap& processes) {
    const auto maker = FactoryInstance<IApplicationProcess>().FindMaker(makerName);
    if (!maker) {
        PLATFORM_LOG(Platform::ErrorLog, " Failed to find maker for process %s", name.c_str());
        return "Failed to find maker for process";
    }
    return ExceptionToResult([&]() -> ResultCode {
        processes[name] = maker->Make(application, name.c_str());
        return Platform::Success;
    });
}

} // namespace

ResultCode CreateComponents(const ApplicationConfig& config, ComponentMap& components) {
    for (const std::string& name : config.components) {
        if (const ResultCode result = CreateComponent(name, components); !result) {
            return result;
        }
    }
    return Platform::Success;
}

ResultCode CreateProcesses(const ApplicationConfig& config, ApplicationBase* application,
                           ProcessMap& processes) {
    for (const auto& [makerName, names] : config.processes) {
        for (const std::string& name : names) {
            if (const ResultCode result = CreateProcess(makerName, name, application, processes); !result) {
                return result;
            }
        }
    }
    return Platform::Success;
}
