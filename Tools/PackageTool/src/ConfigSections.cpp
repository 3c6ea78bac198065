#include "Tools/PackageTool/src/ConfigSections.h"

#include <algorithm>
#include <set>

#include "Libs/Shared/src/JsonConfig.h"

namespace {

constexpr char Application[] = "Application";
constexpr char Schema[] = "$schema"; // for editors

// Goes through one document.
class Reader {
public:
    Reader(const JsonDocument& document, const RecordReport& report, ConfigSections& sections)
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
            for (const JsonValue::Member& member : processes->value.GetObject()) {
                ReadClass(member);
            }
        }
        const auto components = section->FindMember("Components");
        if (components != section->MemberEnd() && components->value.IsArray()) {
            for (const JsonValue& component : components->value.GetArray()) {
                CheckComponent(component);
            }
        }
    }

    void ReadClass(const JsonValue::Member& member) {
        const std::string className = TextOf(member.name);
        const ProcessClass* const processClass = FindProcessClass(className);
        if (!processClass) {
            m_report(member.name, Quoted(className) + ": Failed to find maker for process");
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
            m_report(component, Quoted(TextOf(component)) + ": Failed to find maker for component");
        }
    }

    void ReadSection(const std::string& name, const ProcessInstance& instance) {
        const JsonValue* section = nullptr;
        if (const ResultCode result = FindConfigSection(m_document, name.c_str(), section); !result) {
            m_report(*instance.name, Quoted(name) + ": " + result.Text());
            return;
        }
        ReadInto(m_sections.watchers, name, instance, *section);
        ReadInto(m_sections.packagers, name, instance, *section);
        ReadInto(m_sections.uploaders, name, instance, *section);
        ReadInto(m_sections.quotas, name, instance, *section);
        ReadInto(m_sections.monitors, name, instance, *section);
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
            if (!seen.insert(name).second) {
                m_report(member.name, "Key " + Quoted(name) + " stands here again; only the first counts");
            } else if (instance != m_sections.instances.end()) {
                if (instance->second.processClass && !instance->second.processClass->section) {
                    m_report(member.name, "Unknown key " + Quoted(name) + ": a " +
                                              std::string(instance->second.processClass->name) +
                                              " has no section");
                }
            } else if (name != Application && name != Schema) {
                m_report(member.name, "Unknown key " + Quoted(name) + ": no process has this name");
            }
        }
    }

    const JsonDocument& m_document;
    const RecordReport& m_report;
    ConfigSections& m_sections;
};

} // namespace

void ReadConfigSections(const JsonDocument& document, const RecordReport& report, ConfigSections& sections) {
    Reader(document, report, sections).Run();
}
