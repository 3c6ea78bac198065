#include "Libs/Framework/Core/src/ApplicationBase.h"

#include <set>
#include <string>
#include <vector>

#include "Libs/Framework/Core/src/ApplicationFolders.h"
#include "Libs/Framework/Core/src/ExceptionToResult.h"
#include "Libs/Framework/Core/src/LogFile.h"
#include "Libs/Framework/Core/src/Thread.h"
#include "Libs/Shared/src/JsonConfig.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Assert.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Log.h"

namespace {

const char* g_ApplicationDisplayName = nullptr;

// Takes every process through one step. One that fails is logged, dropped and destroyed: its thread has not
// been started yet.
template <class Step, class Report>
void DropFailing(ProcessMap& processes, Step&& step, Report&& report) {
    for (auto it = processes.begin(); it != processes.end();) {
        PLATFORM_ASSERT_TEXT(it->second, "procPair.second");
        const ResultCode result = it->second ? ExceptionToResult([&] { return step(*it->second); })
                                             : ResultCode("There is no process");
        if (result) {
            ++it;
            continue;
        }
        report(it->first.c_str(), result.Text());
        it = processes.erase(it);
    }
}

// Of two lists for one class the first is lost, and nothing else says so.
void ReportRepeatedClasses(const JsonDocument& config) {
    const JsonValue& application = config["Application"];
    const auto processes = application.FindMember("Processes");
    if (processes == application.MemberEnd()) {
        return;
    }
    std::set<std::string> seen;
    for (const JsonValue::Member& member : processes->value.GetObject()) {
        if (!seen.insert(member.name.GetString()).second) {
            PLATFORM_LOG(Platform::ErrorLog,
                         " Class \"%s\" appears twice under Processes, the last list counts",
                         member.name.GetString());
        }
    }
}

} // namespace

ApplicationBase::~ApplicationBase() {
    StopProcesses();
}

ResultCode ApplicationBase::Initialize(int argc, const char** argv) {
    JsonDocument config;
    RETURN_IF_FAILED(LoadConfig(argc, argv, config));
    RETURN_IF_FAILED(PrepareFolders(argc, argv));
    RETURN_IF_FAILED(PreInitialize());
    RETURN_IF_FAILED(CreateComponents());
    RETURN_IF_FAILED(CreateProcesses());
    RETURN_IF_FAILED(InitializeComponents(argc, argv));
    InitializeProcesses(config, argc, argv);
    return PostInitialize();
}

ResultCode ApplicationBase::LoadConfig(int argc, const char** argv, JsonDocument& config) {
    m_configPath = ResolveConfigPath(argc, argv);
    PLATFORM_LOG(Platform::InfoLog, " Using config: %s", m_configPath.c_str());
    if (!PlatformHelpers::PathExists(m_configPath)) {
        return "Failed to find config file on disk!";
    }
    RETURN_IF_FAILED(LoadJsonConfig(m_configPath, config));
    m_config = {};
    RETURN_IF_FAILED(ReadConfigSection(config, "Application", m_config));
    ReportRepeatedClasses(config);
    return Platform::Success;
}

ResultCode ApplicationBase::PrepareFolders(int argc, const char** argv) {
    m_applicationFolder = ResolveApplicationFolder(argc, argv, m_config.applicationFolder);
    PLATFORM_LOG(Platform::InfoLog, " Using application folder: %s", m_applicationFolder.c_str());
    RETURN_IF_FAILED(CreateMissingFolder(m_applicationFolder));
    m_logFolder = ResolveLogFolder(argc, argv, m_applicationFolder);
    PLATFORM_LOG(Platform::InfoLog, " Using log folder: %s", m_logFolder.c_str());
    RETURN_IF_FAILED(CreateMissingFolder(m_logFolder));
    LogFile::OfProcess().Open(m_config.logFile.empty() ? "" : m_logFolder + '\\' + m_config.logFile);
    return SetLogRootFolder(m_logFolder);
}

ResultCode ApplicationBase::PreInitialize() {
    DropFailing(
        m_processes, [](IApplicationProcess& process) { return process.PreInitialize(); },
        [](const char* name, const char* error) {
            PLATFORM_LOG(Platform::ErrorLog, " Failed pre-initialize step for process %s, Error: %s", name,
                         error);
        });
    return Platform::Success;
}

ResultCode ApplicationBase::CreateComponents() {
    for (const std::string& name : m_config.components) {
        const auto maker = FactoryInstance<IApplicationComponent>().FindMaker(name);
        if (!maker) {
            PLATFORM_LOG(Platform::ErrorLog, " Failed to find maker for component %s", name.c_str());
            return NoComponentMaker;
        }
        m_components[name] = maker->Make();
    }
    return Platform::Success;
}

ResultCode ApplicationBase::CreateProcesses() {
    for (const auto& [makerName, names] : m_config.processes) {
        for (const std::string& name : names) {
            const auto maker = FactoryInstance<IApplicationProcess>().FindMaker(makerName);
            if (!maker) {
                PLATFORM_LOG(Platform::ErrorLog, " Failed to find maker for process %s", name.c_str());
                return NoProcessMaker;
            }
            m_processes[name] = maker->Make(this, name.c_str());
        }
    }
    return Platform::Success;
}

ResultCode ApplicationBase::InitializeComponents(int argc, const char** argv) {
    for (const auto& [name, component] : m_components) {
        RETURN_IF_FAILED(ExceptionToResult([&, &made = component] { return made->Initialize(argc, argv); }));
    }
    return Platform::Success;
}

void ApplicationBase::InitializeProcesses(const JsonDocument& config, int argc, const char** argv) {
    DropFailing(
        m_processes, [&](IApplicationProcess& process) { return process.Initialize(config, argc, argv); },
        [](const char* name, const char* error) {
            PLATFORM_LOG(Platform::ErrorLog, " Failed to initialize process %s, Error: %s", name, error);
        });
}

ResultCode ApplicationBase::PostInitialize() {
    DropFailing(
        m_processes, [](IApplicationProcess& process) { return process.PostInitialize(); },
        [](const char* name, const char* error) {
            PLATFORM_LOG(Platform::ErrorLog, " Failed post initialize step for process %s, Error: %s", name,
                         error);
        });
    return Platform::Success;
}

ResultCode ApplicationBase::Run() {
    for (const auto& procPair : m_processes) {
        PLATFORM_ASSERT(procPair.second);
        if (!procPair.second) {
            return "There is no process";
        }
        RETURN_IF_FAILED(procPair.second->Start());
    }
    std::vector<void*> handles;
    handles.reserve(m_processes.size());
    for (const auto& procPair : m_processes) {
        const std::shared_ptr<Thread>& procThreadPtr = procPair.second->GetThread();
        PLATFORM_ASSERT(procThreadPtr);
        if (procThreadPtr) {
            handles.push_back(procThreadPtr->GetHandle());
        }
    }
    return WaitForThreads(handles);
}

ResultCode ApplicationBase::Shutdown() {
    for (const auto& procPair : m_processes) {
        PLATFORM_ASSERT(procPair.second);
        if (!procPair.second) {
            return "There is no process";
        }
        RETURN_IF_FAILED(procPair.second->Shutdown());
    }
    for (const auto& [name, component] : m_components) {
        RETURN_IF_FAILED(ExceptionToResult([&made = component] { return made->Shutdown(); }));
    }
    return Platform::Success;
}

ResultCode ApplicationBase::AskUploadPermission(UploadPermission& answer) {
    answer = UploadPermission::Allowed;
    return Platform::Success;
}

ResultCode ApplicationBase::GetVersion(PlatformHelpers::ModuleVersion&, uint32_t&) {
    return "The program has no version";
}

void ApplicationBase::RequestShutdown() {
    for (const auto& procPair : m_processes) {
        if (procPair.second) {
            procPair.second->RequestShutdown();
        }
    }
}

std::shared_ptr<IApplicationProcess> ApplicationBase::GetProcess(const std::string& name) const {
    const auto found = m_processes.find(name);
    return found == m_processes.end() ? nullptr : found->second;
}

void ApplicationBase::StopProcesses() {
    RequestShutdown();
    for (const auto& procPair : m_processes) {
        if (procPair.second && procPair.second->GetThread()) {
            procPair.second->GetThread()->Finish();
        }
    }
}

void RegisterApplicationDisplayName(const char* displayName) {
    PLATFORM_ASSERT(displayName);
    g_ApplicationDisplayName = displayName;
}

const char* GetApplicationDisplayName() {
    PLATFORM_ASSERT_MESSAGE(g_ApplicationDisplayName,
                            "Application client code must call RegisterApplicationDisplayName(aName)");
    return g_ApplicationDisplayName ? g_ApplicationDisplayName : "Bad Application Display Name!";
}
