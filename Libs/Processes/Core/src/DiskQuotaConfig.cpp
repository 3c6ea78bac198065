#include "Libs/Processes/Core/src/DiskQuotaConfig.h"

Reflection_DefineType(DiskQuotaConfig,
                      Reflection_Field(invalidGraceTime, "InvalidGraceTime", Reflection::OptionalAttribute()),
                      Reflection_Field(timeBetweenChecks, "TimeBetweenChecks",
                                       Reflection::OptionalAttribute()),
                      Reflection_Field(dumpsFolder, "DumpsFolder", Reflection::OptionalAttribute()),
                      Reflection_Field(dumpsQuota, "DumpsQuota", Reflection::OptionalAttribute()),
                      Reflection_Field(packagedFolder, "PackagedFolder", Reflection::OptionalAttribute()),
                      Reflection_Field(packagedQuota, "PackagedQuota", Reflection::OptionalAttribute()));
