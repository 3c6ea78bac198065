#include "Libs/Framework/Core/src/ApplicationBase.h"
#include "Libs/Framework/Core/src/Factory.h"
#include "Libs/Processes/Cloud/src/CloudComponent.h"
#include "Libs/Processes/Cloud/src/UploaderS3.h"
#include "Libs/Processes/Core/src/DiskQuota.h"
#include "Libs/Processes/Core/src/Packager.h"
#include "Libs/Processes/Core/src/ProcessMonitor.h"
#include "Libs/Processes/Core/src/Shutdowner.h"
#include "Libs/Processes/Core/src/SingletonAssurance.h"
#include "Libs/Processes/Core/src/Watcher.h"

// What a configuration can name, and the program's own name, known before the entry routine runs.
namespace {

struct Registrations {
    Registrations() {
        RegisterApplicationDisplayName("MorvaneCrashReporter");

        FactoryInstance<IApplicationComponent>().RegisterMaker<CloudComponent>("CloudComponent");

        auto& processes = FactoryInstance<IApplicationProcess>();
        processes.RegisterMaker<DiskQuota>("DiskQuota");
        processes.RegisterMaker<Packager>("Packager");
        processes.RegisterMaker<ProcessMonitor>("ProcessMonitor");
        processes.RegisterMaker<Shutdowner>("Shutdowner");
        processes.RegisterMaker<SingletonAssurance>("SingletonAssurance");
        processes.RegisterMaker<UploaderS3>("UploaderS3");
        processes.RegisterMaker<Watcher>("Watcher");
    }
};

const Registrations g_registrations;

} // namespace
