#include "Libs/Framework/Core/src/ApplicationBase.h"
#include "Libs/Framework/Core/src/Factory.h"
#include "Libs/Processes/Cloud/src/CloudComponent.h"
#include "Libs/Processes/Cloud/src/UploaderPresigned.h"
#include "Libs/Processes/Cloud/src/UploaderS3.h"
#include "Libs/Processes/Core/src/DiskQuota.h"
#include "Libs/Processes/Core/src/Packager.h"
#include "Libs/Processes/Core/src/ProcessClasses.h"
#include "Libs/Processes/Core/src/ProcessMonitor.h"
#include "Libs/Processes/Core/src/Shutdowner.h"
#include "Libs/Processes/Core/src/SingletonAssurance.h"
#include "Libs/Processes/Core/src/Watcher.h"

// What a configuration can name, and the program's own name, known before the entry routine runs.
namespace {

struct Registrations {
    Registrations() {
        RegisterApplicationDisplayName("MorvaneCrashReporter");

        auto& components = FactoryInstance<IApplicationComponent>();
        auto& processes = FactoryInstance<IApplicationProcess>();
#define REGISTER_COMPONENT(Class) components.RegisterMaker<Class>(#Class);
#define REGISTER_PROCESS(Class, ...) processes.RegisterMaker<Class>(#Class);
        MORVANE_COMPONENT_CLASSES(REGISTER_COMPONENT)
        MORVANE_PROCESS_CLASSES(REGISTER_PROCESS, REGISTER_PROCESS)
#undef REGISTER_COMPONENT
#undef REGISTER_PROCESS
    }
};

const Registrations g_registrations;

} // namespace
