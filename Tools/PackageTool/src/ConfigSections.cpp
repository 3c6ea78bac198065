#include "Tools/PackageTool/src/ConfigSections.h"

#include <algorithm>
#include <set>

#include "Libs/Shared/src/JsonConfig.h"
#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_Serializer.h"

namespace {

using JsonSerialization::ReadPlan;
using Reflection::TypeKind;

constexpr char Application[] = "Application";

// Walks a value and its plan side by side.
class RecordReader {
public:
    explicit RecordReader(const ConfigReport& report) : m_report(report) {}

    // name is the member's that has the value.
    void Read(const ReadPlan& plan, void* object, const JsonValue& value, const std::string& name) {
        const bool goesDeeper = !plan.function;
        if (goesDeeper && plan.type->kind == TypeKind::Record && value.IsObject()) {
            ReadFields(plan, object, value);
        } else if (goesDeeper && plan.type->kind == TypeKind::Vector && value.IsArray()) {
            ReadVector(plan, object, value, name);
        } else if (goesDeeper && plan.type->kind == TypeKind::Map && value.IsObject()) {
            ReadMap(plan, object, value);
        } else {
            ReadWhole(plan, object, value, name);
        }
    }

private:
    void ReadWhole(const ReadPlan& plan, void* object, const JsonValue& value, const std::string& name) {
        const ResultCode result = JsonSerialization::ReadByPlan(plan, object, {value, m_context});
        if (!result) {
            m_report(value, name.empty() ? result.Text() : Quoted(name) + ": " + result.Text());
        } else if (!plan.function && plan.type->kind == TypeKind::Record) {
            m_report(value, Quoted(name) + ": Element is not an object"); // reads as an empty one
        }
    }

    void ReadFields(const ReadPlan& plan, void* object, const JsonValue& value) {
        for (const ReadPlan::Field& field : plan.fields) {
            const std::string key(field.key);
            const auto member = value.FindMember(key.c_str());
            if (member == value.MemberEnd()) {
                if (!field.isOptional) {
                    m_report(value, "Field not found in json: " + Quoted(key));
                }
                continue;
            }
            void* const place = static_cast<std::byte*>(object) + field.offset;
            if (field.custom) {
                const ResultCode result = field.custom(place, {member->value, m_context});
                if (!result) {
                    m_report(member->value, Quoted(key) + ": " + result.Text());
                }
            } else {
                Read(*field.plan, place, member->value, key);
            }
        }
        ReportOtherMembers(plan, value);
    }

    void ReportOtherMembers(const ReadPlan& plan, const JsonValue& value) {
        const std::vector<std::string_view> known = ConfigKeys::Of(*plan.type);
        std::set<std::string> seen;
        for (const JsonValue::Member& member : value.GetObject()) {
            const std::string key = TextOf(member.name);
            if (ConfigKeys::IsForPeople(key)) {
                continue;
            }
            const bool isKnown = std::ranges::find(known, key) != known.end();
            if (!isKnown) {
                m_report(member.name, "Unknown key " + Quoted(key) + ", did you mean " +
                                          Quoted(ConfigKeys::Nearest(key, known)) + "?");
            } else if (!seen.insert(key).second) {
                m_report(member.name, "Key " + Quoted(key) + " appears again; only the first counts");
            }
        }
    }

    void ReadVector(const ReadPlan& plan, void* object, const JsonValue& value, const std::string& name) {
        const Reflection::VectorOperations& operations = *plan.type->operations.vector;
        operations.resize(object, value.Size());
        auto* place = static_cast<std::byte*>(operations.mutableElements(object));
        for (const JsonValue& element : value.GetArray()) {
            Read(*plan.element, place, element, name);
            place += plan.element->type->size;
        }
    }

    void ReadMap(const ReadPlan& plan, void* object, const JsonValue& value) {
        const Reflection::MapOperations& operations = *plan.type->operations.map;
        operations.clear(object);
        for (const JsonValue::Member& member : value.GetObject()) {
            const std::string key = TextOf(member.name);
            Read(*plan.element, operations.insertFresh(object, key), member.value, key);
        }
    }

    const ConfigReport& m_report;
    JsonSerialization::Context m_context;
};

template <class T>
void ReadAndReport(T& record, const JsonValue& value, const ConfigReport& report) {
    JsonSerialization::PlanCache<Reflection::DeserializeFunction> plans;
    RecordReader(report).Read(plans.Get(Reflection::TypeOf<T>()), &record, value, "");
}

// Reads one document.
class SectionReader {
public:
    SectionReader(const JsonDocument& document, const ConfigReport& report, ConfigSections& sections)
        : m_document(document), m_report(report), m_sections(sections) {}

    void Run() {
        ReadApplication();
        for (const auto& [name, instance] : m_sections.instances) {
            if (instance.processClass && instance.processClass->section) {
                ReadSection(name, instance);
            }
        }
        ReportOtherSections();
    }

private:
    void ReadApplication() {
        const JsonValue* section = nullptr;
        if (const ResultCode result = FindConfigSection(m_document, Application, section); !result) {
            m_report(m_document, Quoted(Application) + ": " + result.Text());
            return;
        }
        ReadAndReport(m_sections.application, *section, m_report);
        const auto processes = section->FindMember("Processes");
        if (processes != section->MemberEnd() && processes->value.IsObject()) {
            ReadClasses(processes->value);
        }
        const auto components = section->FindMember("Components");
        if (components != section->MemberEnd() && components->value.IsArray()) {
            for (const JsonValue& component : components->value.GetArray()) {
                CheckComponent(component);
            }
        }
    }

    // The agent takes the last list of a class.
    void ReadClasses(const JsonValue& processes) {
        std::map<std::string, const JsonValue::Member*> lists;
        for (const JsonValue::Member& member : processes.GetObject()) {
            const std::string name = TextOf(member.name);
            if (!lists.insert_or_assign(name, &member).second) {
                m_report(member.name, "Class " + Quoted(name) + " appears again; only this list counts");
            }
        }
        for (const auto& [name, list] : lists) {
            ReadClass(name, *list);
        }
    }

    void ReadClass(const std::string& className, const JsonValue::Member& member) {
        const ProcessClass* const processClass = FindProcessClass(className);
        if (!processClass) {
            m_report(member.name, Quoted(className) + ": " + NoProcessMaker);
        }
        if (!member.value.IsArray()) {
            return; // reported by the reader
        }
        for (const JsonValue& name : member.value.GetArray()) {
            if (name.IsString() &&
                !m_sections.instances.emplace(TextOf(name), ProcessInstance{processClass, &name}).second) {
                m_report(name, Quoted(TextOf(name)) + " is the name of another process already");
            }
        }
    }

    void CheckComponent(const JsonValue& component) {
        const auto known = ComponentClasses();
        if (component.IsString() && std::find(known.begin(), known.end(), TextOf(component)) == known.end()) {
            m_report(component, Quoted(TextOf(component)) + ": " + NoComponentMaker);
        }
    }

    void ReadSection(const std::string& name, const ProcessInstance& instance) {
        const JsonValue* section = nullptr;
        if (const ResultCode result = FindConfigSection(m_document, name.c_str(), section); !result) {
            m_report(*instance.name, Quoted(name) + ": " + result.Text());
            return;
        }
#define READ_SECTION(Class, Config) ReadInto(m_sections.of##Class, name, instance, *section);
#define READ_NOTHING(Class)
        MORVANE_PROCESS_CLASSES(READ_SECTION, READ_NOTHING)
#undef READ_SECTION
#undef READ_NOTHING
    }

    template <class Config>
    void ReadInto(ConfigSectionMap<Config>& sections, const std::string& name,
                  const ProcessInstance& instance, const JsonValue& json) {
        if (instance.processClass->section == &Reflection::TypeOf<Config>) {
            ConfigSection<Config>& section = sections[name];
            section.json = &json;
            ReadAndReport(section.config, json, m_report);
        }
    }

    void ReportOtherSections() {
        std::set<std::string> seen;
        for (const JsonValue::Member& member : m_document.GetObject()) {
            const std::string name = TextOf(member.name);
            const auto instance = m_sections.instances.find(name);
            if (ConfigKeys::IsForPeople(name)) {
                continue;
            }
            if (!seen.insert(name).second) {
                m_report(member.name, "Key " + Quoted(name) + " appears again; only the first counts");
            } else if (instance == m_sections.instances.end()) {
                if (name != Application) {
                    m_report(member.name,
                             "Unknown key " + Quoted(name) + ": no process has this name" + Meant(name));
                }
            } else if (instance->second.processClass && !instance->second.processClass->section) {
                m_report(member.name, "Unknown key " + Quoted(name) + ": a " +
                                          std::string(instance->second.processClass->name) +
                                          " has no section");
            }
        }
    }

    // The nearest section that is missing, if one is.
    std::string Meant(const std::string& name) const {
        std::vector<std::string_view> missing;
        for (const auto& [instance, process] : m_sections.instances) {
            if (process.processClass && process.processClass->section &&
                !m_document.HasMember(instance.c_str())) {
                missing.push_back(instance);
            }
        }
        const std::string_view nearest = ConfigKeys::Nearest(name, missing);
        return nearest.empty() ? "" : ", did you mean " + Quoted(nearest) + "?";
    }

    const JsonDocument& m_document;
    const ConfigReport& m_report;
    ConfigSections& m_sections;
};

} // namespace

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
    const auto found = std::ranges::find(classes, name, &ProcessClass::name);
    return found == classes.end() ? nullptr : &*found;
}

std::span<const std::string_view> ComponentClasses() {
    static constexpr std::string_view Classes[] = {MORVANE_COMPONENT_CLASSES(COMPONENT_CLASS)};
    return Classes;
}

void ReadConfigSections(const JsonDocument& document, const ConfigReport& report, ConfigSections& sections) {
    SectionReader(document, report, sections).Run();
}

std::string Quoted(std::string_view text) {
    return "\"" + std::string(text) + "\"";
}

std::string TextOf(const JsonValue& string) {
    return {string.GetString(), string.GetStringLength()};
}
