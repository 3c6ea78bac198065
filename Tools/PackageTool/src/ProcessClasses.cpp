#include "Tools/PackageTool/src/ProcessClasses.h"

#include <algorithm>

#include "Libs/Processes/Cloud/src/UploaderS3Config.h"
#include "Libs/Processes/Core/src/ProcessClasses.h"
#include "Libs/Processes/Core/src/ProcessConfigs.h"

#define CLASS_WITH_SECTION(Class, Config) {#Class, &Reflection::TypeOf<Config>},
#define CLASS_WITHOUT_SECTION(Class) {#Class, nullptr},
#define COMPONENT_CLASS(Class) std::string_view(#Class),

std::span<const ProcessClass> ProcessClasses() {
    static constexpr ProcessClass Classes[] = {
        MORVANE_PROCESS_CLASSES(CLASS_WITH_SECTION, CLASS_WITHOUT_SECTION)};
    return Classes;
}

const ProcessClass* FindProcessClass(std::string_view name) {
    const auto classes = ProcessClasses();
    const auto found = std::find_if(classes.begin(), classes.end(),
                                    [&](const ProcessClass& known) { return known.name == name; });
    return found == classes.end() ? nullptr : &*found;
}

std::span<const std::string_view> ComponentClasses() {
    static constexpr std::string_view Classes[] = {MORVANE_COMPONENT_CLASSES(COMPONENT_CLASS)};
    return Classes;
}
