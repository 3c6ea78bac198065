#include "Tools/PackageTool/src/ConfigCheck.h"

#include <algorithm>
#include <map>
#include <set>
#include <tuple>

#include "Libs/Framework/Core/src/ApplicationConfig.h"
#include "Libs/Processes/Cloud/src/S3Endpoint.h"
#include "Libs/Processes/Cloud/src/UploaderS3Config.h"
#include "Libs/Processes/Core/src/AttachmentBlacklist.h"
#include "Libs/Processes/Core/src/DiskQuotaConfig.h"
#include "Libs/Processes/Core/src/HeaderFile.h"
#include "Libs/Processes/Core/src/PackagerConfig.h"
#include "Libs/Processes/Core/src/ProcessMonitorConfig.h"
#include "Libs/Processes/Core/src/WatcherConfig.h"
#include "Libs/Shared/src/JsonConfig.h"
#include "Tools/PackageTool/src/FolderAgreement.h"
#include "Tools/PackageTool/src/ProcessClasses.h"
#include "Tools/PackageTool/src/RecordCheck.h"

namespace {

using FolderAgreement::Base;

constexpr std::string_view Application = "Application";
constexpr std::string_view Schema = "$schema"; // for editors

// One process as the configuration names it.
struct Instance {
    const ProcessClass* processClass = nullptr;
    const JsonValue* name = nullptr; // where it is named
};

// A process's section with what was read from it.
template <class Config>
struct Section {
    const JsonValue* json = nullptr;
    Config config;

    // The value of that key, or the section where it is left out.
    const JsonValue& At(const char* key) const {
        const auto member = json->FindMember(key);
        return member == json->MemberEnd() ? *json : member->value;
    }
};
template <class Config>
using Sections = std::map<std::string, Section<Config>>;

std::string PackageName(const std::string& configured) {
    return configured.empty() ? "submission.pkg" : configured;
}

// Goes through one document. Positions and problems are the caller's.
class Checker {
public:
    Checker(const JsonDocument& document, const RecordReport& report)
        : m_document(document), m_report(report) {}

    void Run() {
        if (!m_document.IsObject()) {
            m_report(m_document, "The configuration is not an object");
            return;
        }
        ReadApplication();
        for (const auto& [name, instance] : m_instances) {
            if (instance.processClass && instance.processClass->section) {
                ReadSection(name, instance);
            }
        }
        ReportOtherSections();
        CheckWatchers();
        CheckPackagers();
        CheckUploaders();
        CheckQuotas();
    }

private:
    void ReadApplication() {
        const JsonValue* section = nullptr;
        if (const ResultCode result = FindConfigSection(m_document, Application.data(), section); !result) {
            m_report(m_document, Quoted(Application) + ": " + result.Text());
            return;
        }
        ReadAndReport(m_application, *section, m_report);
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
            if (name.IsString() && !m_instances.emplace(TextOf(name), Instance{processClass, &name}).second) {
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

    void ReadSection(const std::string& name, const Instance& instance) {
        const JsonValue* section = nullptr;
        if (const ResultCode result = FindConfigSection(m_document, name.c_str(), section); !result) {
            m_report(*instance.name, Quoted(name) + ": " + result.Text());
            return;
        }
        ReadInto(m_watchers, name, instance, *section);
        ReadInto(m_packagers, name, instance, *section);
        ReadInto(m_uploaders, name, instance, *section);
        ReadInto(m_quotas, name, instance, *section);
        ReadInto(m_monitors, name, instance, *section);
    }

    template <class Config>
    void ReadInto(Sections<Config>& sections, const std::string& name, const Instance& instance,
                  const JsonValue& json) {
        if (instance.processClass->section == &Reflection::TypeOf<Config>) {
            Section<Config>& section = sections[name];
            section.json = &json;
            ReadAndReport(section.config, json, m_report);
        }
    }

    void ReportOtherSections() {
        std::set<std::string> seen;
        for (const JsonValue::Member& member : m_document.GetObject()) {
            const std::string name = TextOf(member.name);
            const auto instance = m_instances.find(name);
            if (!seen.insert(name).second) {
                m_report(member.name, "Key " + Quoted(name) + " stands here again; only the first counts");
            } else if (instance != m_instances.end()) {
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

    // The section of the watcher, or null after a report. where is the name's place.
    const Section<WatcherConfig>* FindWatcher(const std::string& name, const JsonValue& where,
                                              const char* missing) {
        const auto instance = m_instances.find(name);
        if (instance == m_instances.end()) {
            m_report(where, Quoted(name) + ": " + missing);
            return nullptr;
        }
        const ProcessClass* const processClass = instance->second.processClass;
        if (processClass && processClass->name != "Watcher") {
            m_report(where, Quoted(name) + " is a " + std::string(processClass->name) + ", no Watcher");
        }
        const auto watcher = m_watchers.find(name);
        return watcher == m_watchers.end() ? nullptr : &watcher->second;
    }

    void CheckWatchers() {
        for (const auto& [name, watcher] : m_watchers) {
            const std::string& collector = watcher.config.metricsCollectorName;
            if (!collector.empty()) {
                m_report(watcher.At("MetricsCollectorName"),
                         Quoted(collector) + ": " +
                             (m_instances.contains(collector)
                                  ? "Metrics process could not provide required MetricsAggregator interface"
                                  : "No metrics process to provide metrics collection for watcher"));
            }
        }
    }

    void CheckPackagers() {
        std::map<std::string, std::string> workFolders;
        for (const auto& [name, packager] : m_packagers) {
            const PackagerConfig& config = packager.config;
            CheckBlacklist(packager);
            const std::string work = FolderAgreement::WithDefault(config.packageWorkFolder, "PackageTemp");
            if (const auto [other, isNew] = workFolders.emplace(work, name); !isNew) {
                m_report(packager.At("PackageWorkFolder"),
                         Quoted(name) + " and " + Quoted(other->second) + " share the work folder " + work);
            }
            if (packager.json->HasMember("WatcherName")) {
                const auto* watcher = FindWatcher(config.watcherName, packager.At("WatcherName"),
                                                  "No watcher process to provide submission for packager");
                CheckSentinel(watcher, HeaderFile::Name, "packager " + Quoted(name) + " reads");
            }
        }
    }

    void CheckBlacklist(const Section<PackagerConfig>& packager) {
        const JsonValue& patterns = packager.At("AttachmentBlacklist");
        if (!patterns.IsArray()) {
            return;
        }
        for (const JsonValue& pattern : patterns.GetArray()) {
            AttachmentBlacklist list;
            AttachmentBlacklist::BadPattern bad;
            if (pattern.IsString() && !list.Compile({TextOf(pattern)}, bad)) {
                m_report(pattern, "Invalid regular expression in attachment black list: " +
                                      Quoted(bad.pattern) + ", " + bad.message);
            }
        }
    }

    // A watcher takes no folder without its sentinel; its consumer looks for that file in the folders.
    void CheckSentinel(const Section<WatcherConfig>* watcher, const std::string& file,
                       const std::string& who) {
        if (watcher && watcher->config.sentinelFile != file) {
            m_report(watcher->At("SentinelFile"), "The watcher waits for the sentinel " +
                                                      Quoted(watcher->config.sentinelFile) + ", but " + who +
                                                      " " + Quoted(file));
        }
    }

    void CheckUploaders() {
        for (const auto& [name, uploader] : m_uploaders) {
            const UploaderS3Config& config = uploader.config;
            const auto& components = m_application.components;
            if (std::find(components.begin(), components.end(), "CloudComponent") == components.end()) {
                m_report(*m_instances[name].name,
                         Quoted(name) + ": UploaderS3 requires CloudComponent for initialization");
            }
            CheckEndpoint(uploader);
            if (!uploader.json->HasMember("WatcherName")) {
                continue;
            }
            const auto* watcher = FindWatcher(config.watcherName, uploader.At("WatcherName"),
                                              "No watcher process to provide submissions for uploader");
            CheckSentinel(watcher, PackageName(config.submissionFilename),
                          "uploader " + Quoted(name) + " sends");
            CheckUploadFolder(uploader, watcher);
        }
    }

    void CheckEndpoint(const Section<UploaderS3Config>& uploader) {
        bool isFilled = true;
        for (const char* const key : {"BucketName", "AccessKey", "SecretKey"}) {
            const auto member = uploader.json->FindMember(key);
            const bool isThere = member != uploader.json->MemberEnd();
            const bool hasText = isThere && member->value.IsString() && member->value.GetStringLength() > 0;
            if (isThere && !hasText && (member->value.IsString() || member->value.IsNull())) {
                m_report(member->value, Quoted(key) + " is empty");
            }
            isFilled = isFilled && hasText;
        }
        if (isFilled) {
            CheckAddress(uploader);
        }
    }

    // As each upload does it.
    void CheckAddress(const Section<UploaderS3Config>& uploader) {
        const UploaderS3Config& config = uploader.config;
        ObjectStoreConfig store;
        store.endpointOverride = config.endpointOverride;
        store.region = config.region;
        store.useVirtualAddressing = config.useVirtualAddressing;
        store.bucket = config.bucketName;
        store.accessKey = config.accessKey;
        store.secretKey = config.secretKey;
        S3Endpoint endpoint;
        if (const ResultCode result = ResolveS3Endpoint(store, endpoint); !result) {
            m_report(*uploader.json, result.Text());
        }
    }

    // Some packager must fill the folder from which packages are sent, under the name that is looked for.
    void CheckUploadFolder(const Section<UploaderS3Config>& uploader, const Section<WatcherConfig>* watcher) {
        if (!watcher || m_packagers.empty()) {
            return;
        }
        const std::string folder =
            FolderAgreement::Comparable(watcher->config.folder, Base::ApplicationFolder);
        std::string packaged;
        for (const auto& [name, packager] : m_packagers) {
            packaged = FolderAgreement::WithDefault(packager.config.packagedFolder, "PackagedDumps");
            if (packaged != folder) {
                continue;
            }
            const std::string written = PackageName(packager.config.submissionFilename);
            const std::string sent = PackageName(uploader.config.submissionFilename);
            if (written != sent) {
                m_report(uploader.At("SubmissionFilename"), "The uploader sends " + Quoted(sent) +
                                                                ", but packager " + Quoted(name) +
                                                                " writes " + Quoted(written));
            }
            return;
        }
        m_report(watcher->At("Folder"),
                 "The uploader's watcher looks into " + folder + ", but the packager writes to " + packaged);
    }

    void CheckQuotas() {
        std::set<std::string> dumps;
        std::set<std::string> packaged;
        for (const auto& [name, packager] : m_packagers) {
            packaged.insert(FolderAgreement::WithDefault(packager.config.packagedFolder, "PackagedDumps"));
            if (const auto watcher = m_watchers.find(packager.config.watcherName);
                watcher != m_watchers.end()) {
                dumps.insert(
                    FolderAgreement::Comparable(watcher->second.config.folder, Base::ApplicationFolder));
            }
        }
        for (const auto& [name, quota] : m_quotas) {
            CheckQuotaFolder(dumps, FolderAgreement::WithDefault(quota.config.dumpsFolder, "dumps"),
                             quota.At("DumpsFolder"), "the packager's submissions come from ");
            CheckQuotaFolder(packaged,
                             FolderAgreement::WithDefault(quota.config.packagedFolder, "packagedDumps"),
                             quota.At("PackagedFolder"), "the packager writes to ");
        }
    }

    void CheckQuotaFolder(const std::set<std::string>& used, const std::string& limited,
                          const JsonValue& where, const char* use) {
        if (!used.empty() && !used.contains(limited)) {
            m_report(where, "The quota is for " + limited + ", but " + use + *used.begin());
        }
    }

    const JsonDocument& m_document;
    const RecordReport& m_report;
    ApplicationConfig m_application;
    std::map<std::string, Instance> m_instances;
    Sections<WatcherConfig> m_watchers;
    Sections<PackagerConfig> m_packagers;
    Sections<UploaderS3Config> m_uploaders;
    Sections<DiskQuotaConfig> m_quotas;
    Sections<ProcessMonitorConfig> m_monitors;
};

} // namespace

std::vector<ConfigProblem> CheckConfig(std::string_view text) {
    JsonDocument document;
    if (!JsonSerialization::ParseText(text, document)) {
        return {{PositionOf(text, document.GetErrorOffset()), JsonSerialization::ParseErrorText(document)}};
    }
    const JsonPositions positions(text, document);
    std::vector<ConfigProblem> problems;
    const RecordReport report = [&](const JsonValue& where, std::string problem) {
        problems.push_back({positions.Find(where), std::move(problem)});
    };
    Checker(document, report).Run();
    std::stable_sort(problems.begin(), problems.end(), [](const ConfigProblem& a, const ConfigProblem& b) {
        return std::tie(a.position.line, a.position.column) < std::tie(b.position.line, b.position.column);
    });
    return problems;
}
