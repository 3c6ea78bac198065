#pragma once

#include <map>
#include <memory>
#include <string>

#include "Libs/Framework/Core/src/ApplicationConfig.h"
#include "Libs/Framework/Core/src/IApplicationComponent.h"
#include "Libs/Framework/Core/src/IApplicationProcess.h"

class ApplicationBase;

using ProcessMap = std::map<std::string, std::shared_ptr<IApplicationProcess>>;
using ComponentMap = std::map<std::string, std::shared_ptr<IApplicationComponent>>;

// Make what the configuration names and add it to the map. A name without a maker is logged and ends the
// creation with a failure; what was made before stays in the map. A repeated name replaces what had it. Main
// thread.
ResultCode CreateComponents(const ApplicationConfig& config, ComponentMap& components);

// Maker names in ascending order, instance names as listed: of two makers that claim an instance name the
// later one's process stays.
ResultCode CreateProcesses(const ApplicationConfig& config, ApplicationBase* application,
                           ProcessMap& processes);
