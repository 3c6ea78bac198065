#include "Libs/Processes/Core/src/ProcessMonitorConfig.h"

Reflection_DefineType(ProcessMonitorConfig,
                      Reflection_Field(timeBetweenChecks, "TimeBetweenChecks",
                                       Reflection::OptionalAttribute()),
                      Reflection_Field(shutdownDelay, "ShutdownDelay", Reflection::OptionalAttribute()),
                      Reflection_Field(watchedApplications, "WatchedApplications"));
