#include "Libs/Processes/Core/src/WatcherConfig.h"

Reflection_DefineType(
    WatcherConfig, Reflection_Field(timeBetweenChecks, "TimeBetweenChecks", Reflection::OptionalAttribute()),
    Reflection_Field(folder, "Folder"),
    Reflection_Field(sentinelFile, "SentinelFile", Reflection::OptionalAttribute()),
    Reflection_Field(metricsCollectorName, "MetricsCollectorName", Reflection::OptionalAttribute()),
    Reflection_Field(maxFolderScans, "MaxFolderScans", Reflection::OptionalAttribute()),
    Reflection_Field(ignoreReadOnlyFolders, "IgnoreReadOnlyFolders", Reflection::OptionalAttribute()),
    Reflection_Field(shutdownAfterCheck, "ShutdownAfterCheck", Reflection::OptionalAttribute()));
