#pragma once

#include <functional>
#include <map>
#include <span>
#include <string>
#include <string_view>

#include "Libs/Processes/Core/src/ProcessClasses.h"
#include "Libs/Processes/Core/src/ProcessConfigs.h"
#include "Libs/Shared/src/JsonConfig.h"
#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_Document.h"
#include "Libs/Tarnel/Reflection/src/Reflection_Declaration.h"

// A class that a configuration can name under Processes.
struct ProcessClass {
    std::string_view name;
    const Reflection::TypeDescriptor& (*section)(); // its section's record; null if it reads none
};
std::span<const ProcessClass> ProcessClasses();
const ProcessClass* FindProcessClass(std::string_view name); // null if there is none
std::span<const std::string_view> ComponentClasses();        // under Components

// Called with the value or name that has a problem, and the problem.
using ConfigReport = std::function<void(const JsonValue& where, std::string text)>;

// One process as the configuration names it.
struct ProcessInstance {
    const ProcessClass* processClass = nullptr;
    const JsonValue* name = nullptr; // the place of its name
};

// A process's section with what was read from it.
template <class Config>
struct ConfigSection {
    const JsonValue* json = nullptr;
    Config config;

    // The value of that key, or the section if it is left out.
    const JsonValue& At(const char* key) const {
        const auto member = json->FindMember(key);
        return member == json->MemberEnd() ? *json : member->value;
    }
};
template <class Config>
using ConfigSectionMap = std::map<std::string, ConfigSection<Config>>;

// What a configuration says, as far as it can be understood. Sections by their process's name, a map for each
// class: ofPackager, ofWatcher... Points into the document.
struct ConfigSections {
    ApplicationConfig application;
    std::map<std::string, ProcessInstance> instances;
#define SECTIONS_OF_CLASS(Class, Config) ConfigSectionMap<Config> of##Class;
#define NO_SECTIONS(Class)
    MORVANE_PROCESS_CLASSES(SECTIONS_OF_CLASS, NO_SECTIONS)
#undef SECTIONS_OF_CLASS
#undef NO_SECTIONS
};

// Reads all sections and reports what is wrong within each: by the serializer's own plans and with its texts,
// but past a failure too; a field that failed keeps its default. Also reports names that no field has and
// names that appear twice, which the agent's reader ignores. The document is an object. May throw
// std::bad_alloc.
void ReadConfigSections(const JsonDocument& document, const ConfigReport& report, ConfigSections& sections);

std::string Quoted(std::string_view text);
std::string TextOf(const JsonValue& string);
