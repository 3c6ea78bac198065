#pragma once

#include <map>
#include <string>
#include <vector>

#include "Libs/Tarnel/Reflection/src/Reflection_Declaration.h"

// The "Application" section of the configuration file.
struct ApplicationConfig {
    std::map<std::string, std::vector<std::string>> processes; // maker name to the instance names to make
    std::vector<std::string> components; // maker names, each the component's own name too
    std::string applicationFolder;       // name under the user's Documents folder
};
Reflection_DeclareType(ApplicationConfig);
