#include "Libs/Processes/Core/src/PackagerConfig.h"

Reflection_DefineType(
    PackagerConfig, Reflection_Field(timeBetweenChecks, "TimeBetweenChecks", Reflection::OptionalAttribute()),
    Reflection_Field(attachmentLimits, "AttachmentLimits", Reflection::OptionalAttribute()),
    Reflection_Field(attachmentBlacklist, "AttachmentBlacklist", Reflection::OptionalAttribute()),
    Reflection_Field(watcherName, "WatcherName"),
    Reflection_Field(packagedFolder, "PackagedFolder", Reflection::OptionalAttribute()),
    Reflection_Field(packageWorkFolder, "PackageWorkFolder", Reflection::OptionalAttribute()),
    Reflection_Field(submissionFilename, "SubmissionFilename", Reflection::OptionalAttribute()),
    Reflection_Field(source, "Source", Reflection::OptionalAttribute()));
