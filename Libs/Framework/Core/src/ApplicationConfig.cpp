#include "Libs/Framework/Core/src/ApplicationConfig.h"

Reflection_DefineType(ApplicationConfig, Reflection_Field(processes, "Processes"),
                      Reflection_Field(components, "Components"),
                      Reflection_Field(applicationFolder, "ApplicationFolder"));
