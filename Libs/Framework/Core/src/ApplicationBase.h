#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>

#include "Libs/Framework/Core/src/Factory.h"
#include "Libs/Framework/Core/src/PlatformHelpers.h"
#include "Libs/Shared/src/JsonConfig.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_System.h"

using ProcessMap = std::map<std::string, std::shared_ptr<IApplicationProcess>>;
using ComponentMap = std::map<std::string, std::shared_ptr<IApplicationComponent>>;

// The player's answer. 1 is not used.
enum class UploadPermission : uint32_t { NotAsked = 0, Allowed = 2, Refused = 3 };

// Owns everything that runs: the processes and components that the configuration names, and the folders they
// work in. The main thread makes it, takes it through Initialize, Run (which blocks until every process
// thread has ended) and Shutdown, and destroys it. The maps change only during Initialize; afterwards any
// thread may look processes up and request the shutdown. Whatever step failed, destruction first stops and
// joins what still runs.
class ApplicationBase : public std::enable_shared_from_this<ApplicationBase> {
public:
    ApplicationBase() = default;
    virtual ~ApplicationBase();
    ApplicationBase(const ApplicationBase&) = delete; // processes hold its address
    ApplicationBase& operator=(const ApplicationBase&) = delete;

    virtual ResultCode Initialize(int argc, const char** argv);
    virtual ResultCode PreInitialize();
    virtual ResultCode PostInitialize();
    virtual ResultCode Run();
    virtual ResultCode Shutdown();

    // Asks the player whether reports may be sent; blocks the calling thread until answered. The base allows
    // without asking. A failure means that nobody was asked.
    virtual ResultCode AskUploadPermission(UploadPermission& answer);

    // Version of the program file and the change number of its build. The base knows none and fails.
    virtual ResultCode GetVersion(PlatformHelpers::ModuleVersion& version, uint32_t& changelist);

    // Asks every process to stop. Any thread.
    void RequestShutdown();

    // Empty when there is none of that instance name.
    std::shared_ptr<IApplicationProcess> GetProcess(const std::string& name) const;

    const ComponentMap& GetComponents() const { return m_components; }

    // Adds a process that the configuration does not name. Main thread, before Initialize.
    template <class T>
    std::shared_ptr<T> RegisterProcess(const char* procName) {
        PLATFORM_ASSERT(GetMainThreadId() == GetCurrentThreadIdImpl());
        PLATFORM_ASSERT(FactoryInstance<IApplicationProcess>().FindMaker(procName) == nullptr);
        PLATFORM_ASSERT(m_processes.find(procName) == m_processes.end());
        auto process = std::make_shared<T>(this, procName);
        m_processes[procName] = process;
        return process;
    }

    const std::string& GetApplicationFolder() const { return m_applicationFolder; }
    const std::string& GetLogFolder() const { return m_logFolder; }
    const std::string& GetConfigPath() const { return m_configPath; }

protected:
    // Requests the shutdown and joins every thread that was started. A subclass calls it first in its
    // destructor, so that no thread meets a half-destroyed application. Calling it again does nothing.
    void StopProcesses();

private:
    ResultCode LoadConfig(int argc, const char** argv, JsonDocument& config);
    ResultCode PrepareFolders(int argc, const char** argv);
    ResultCode CreateComponents(); // a repeated name replaces what had it
    ResultCode CreateProcesses();  // so does a later maker's instance of the same name
    ResultCode InitializeComponents(int argc, const char** argv);
    void InitializeProcesses(const JsonDocument& config, int argc, const char** argv);

    ProcessMap m_processes; // by instance name; each lifecycle step goes in this order
    ComponentMap m_components;
    ApplicationConfig m_config;
    std::string m_configPath;
    std::string m_applicationFolder;
    std::string m_logFolder;
};

// The program's own name, set once at start-up; the text must live as long as the program.
void RegisterApplicationDisplayName(const char* displayName);
const char* GetApplicationDisplayName();
