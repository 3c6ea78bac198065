#include "Libs/Framework/Core/src/ApplicationConfig.h"

Reflection_DefineType(ApplicationConfig,
                      Reflection_Field(processes, "Processes", Reflection::OptionalAttribute()),
                      Reflection_Field(components, "Components", Reflection::OptionalAttribute()),
                      Reflection_Field(applicationFolder, "ApplicationFolder",
                                       Reflection::OptionalAttribute()));
