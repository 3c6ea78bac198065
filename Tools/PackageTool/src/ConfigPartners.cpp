#include "Tools/PackageTool/src/ConfigPartners.h"

#include <algorithm>
#include <functional>
#include <optional>
#include <set>

#include "Libs/Processes/Cloud/src/S3Endpoint.h"
#include "Libs/Processes/Cloud/src/SignerProtocol.h"
#include "Libs/Processes/Core/src/AttachmentBlacklist.h"
#include "Libs/Processes/Core/src/AttachmentName.h"
#include "Libs/Processes/Core/src/BugHeader.h"
#include "Libs/Processes/Core/src/FolderPath.h"
#include "Libs/Tarnel/String/src/String_Ascii.h"

namespace {

// The folder in which a process works: the configured one, or by default the one of that name in the
// application folder.
std::string WithDefault(const std::string& folder, const char* defaultName) {
    return folder.empty() ? ComparableFolder(defaultName, FolderBase::ApplicationFolder)
                          : ComparableFolder(folder, FolderBase::CurrentFolder);
}

// Nothing for a watcher whose folder is missing, which is reported already.
std::optional<std::string> WatchedFolder(const ConfigSection<WatcherConfig>* watcher) {
    return watcher && watcher->At("Folder").IsString()
               ? std::optional(ComparableFolder(watcher->config.folder, FolderBase::ApplicationFolder))
               : std::nullopt;
}

// Compares the sections of one configuration with each other.
class Checker {
public:
    Checker(const ConfigSections& sections, const ConfigReport& report)
        : m_sections(sections), m_report(report) {}

    void Run() {
        CheckWatchers();
        CheckPackagers();
        CheckUploaders();
        CheckQuotas();
    }

private:
    // The section of the watcher, or null after a report. where is the name's place.
    const ConfigSection<WatcherConfig>* FindWatcher(const std::string& name, const JsonValue& where,
                                                    const char* missing) {
        const auto instance = m_sections.instances.find(name);
        if (instance == m_sections.instances.end()) {
            m_report(where, Quoted(name) + ": " + missing);
            return nullptr;
        }
        const ProcessClass* const processClass = instance->second.processClass;
        if (processClass && processClass->name != "Watcher") {
            m_report(where, Quoted(name) + " is a " + std::string(processClass->name) + ", no Watcher");
        }
        const auto watcher = m_sections.ofWatcher.find(name);
        return watcher == m_sections.ofWatcher.end() ? nullptr : &watcher->second;
    }

    void CheckWatchers() {
        for (const auto& [name, watcher] : m_sections.ofWatcher) {
            const std::string& collector = watcher.config.metricsCollectorName;
            if (!collector.empty()) {
                m_report(watcher.At("MetricsCollectorName"),
                         Quoted(collector) + ": " +
                             (m_sections.instances.contains(collector) ? StartFailure::NoCollectorInterface
                                                                       : StartFailure::NoCollector));
            }
        }
    }

    void CheckPackagers() {
        std::map<std::string, std::string> workFolders;
        for (const auto& [name, packager] : m_sections.ofPackager) {
            const PackagerConfig& config = packager.config;
            CheckBlacklist(packager);
            const std::string work = WithDefault(config.packageWorkFolder, DefaultName::PackageTemp);
            if (const auto [other, isNew] = workFolders.emplace(work, name); !isNew) {
                m_report(packager.At("PackageWorkFolder"),
                         Quoted(name) + " and " + Quoted(other->second) + " share the work folder " + work);
            }
            if (packager.json->HasMember("WatcherName")) {
                const auto* watcher = FindWatcher(config.watcherName, packager.At("WatcherName"),
                                                  StartFailure::NoSubmissionWatcher);
                CheckSentinel(watcher, HeaderFile::Name, "packager " + Quoted(name) + " reads");
                CheckPackagerFolder(packager, watcher);
            }
        }
    }

    // As the packager itself does it, and folders inside each other: submissions would be taken for new ones,
    // or the watched folder for a package.
    void CheckPackagerFolder(const ConfigSection<PackagerConfig>& packager,
                             const ConfigSection<WatcherConfig>* watcher) {
        const std::optional<std::string> watched = WatchedFolder(watcher);
        if (!watched) {
            return;
        }
        const std::string packaged = WithDefault(packager.config.packagedFolder, DefaultName::PackagedDumps);
        const std::string work = WithDefault(packager.config.packageWorkFolder, DefaultName::PackageTemp);
        if (const auto result = CheckPackagerFolders(packaged, work, *watched, std::equal_to()); !result) {
            m_report(packager.At(packaged == *watched ? "PackagedFolder" : "PackageWorkFolder"),
                     result.Text());
        }
        for (const auto& [key, folder] :
             {std::pair("PackagedFolder", packaged), std::pair("PackageWorkFolder", work)}) {
            const bool isAbove = watched->starts_with(folder + "/");
            if (isAbove || folder.starts_with(*watched + "/")) {
                m_report(packager.At(key), std::string(key) + (isAbove ? " has inside it" : " is inside") +
                                               " the folder that the packager's watcher watches");
            }
        }
    }

    void CheckBlacklist(const ConfigSection<PackagerConfig>& packager) {
        const JsonValue& patterns = packager.At("AttachmentBlacklist");
        if (!patterns.IsArray()) {
            return;
        }
        for (const JsonValue& pattern : patterns.GetArray()) {
            AttachmentBlacklist list;
            AttachmentBlacklist::BadPattern bad;
            if (const ResultCode result =
                    pattern.IsString() ? list.Compile({TextOf(pattern)}, bad) : Platform::Success;
                !result) {
                m_report(pattern, result.Text() + (": " + Quoted(bad.pattern) + ", " + bad.message));
            }
        }
    }

    // A watcher takes no folder without its sentinel; its consumer looks for that file in the folders.
    void CheckSentinel(const ConfigSection<WatcherConfig>* watcher, const std::string& file,
                       const std::string& who) {
        if (watcher && String::LowerAscii(watcher->config.sentinelFile) != String::LowerAscii(file)) {
            m_report(watcher->At("SentinelFile"), "The watcher waits for the sentinel " +
                                                      Quoted(watcher->config.sentinelFile) + ", but " + who +
                                                      " " + Quoted(file));
        }
    }

    void CheckUploaders() {
        const auto& components = m_sections.application.components;
        for (const auto& [name, uploader] : m_sections.ofUploaderS3) {
            if (std::find(components.begin(), components.end(), "CloudComponent") == components.end()) {
                m_report(*m_sections.instances.at(name).name,
                         Quoted(name) + ": " + StartFailure::NoCloudComponent);
            }
            CheckEndpoint(uploader);
            CheckUploader(name, uploader);
        }
        for (const auto& [name, uploader] : m_sections.ofUploaderPresigned) {
            CheckSigner(uploader);
            CheckUploader(name, uploader);
        }
    }

    template <class Config>
    void CheckUploader(const std::string& name, const ConfigSection<Config>& uploader) {
        const std::string& receipts = uploader.config.receiptFile;
        if (!receipts.empty() && !IsSafeAttachmentName(receipts)) {
            m_report(uploader.At("ReceiptFile"), Quoted(receipts) + " is not inside the application folder");
        }
        if (!uploader.json->HasMember("WatcherName")) {
            return;
        }
        const auto* watcher = FindWatcher(uploader.config.watcherName, uploader.At("WatcherName"),
                                          StartFailure::NoPackageWatcher);
        CheckSentinel(watcher, PackageName(uploader.config.submissionFilename),
                      "uploader " + Quoted(name) + " sends");
        CheckUploadFolder(uploader, watcher);
    }

    // As the uploader itself does it.
    void CheckSigner(const ConfigSection<UploaderPresignedConfig>& uploader) {
        const ResultCode result = SignerProtocol::CheckSettings(uploader.config);
        if (!result && uploader.At("SignerUrl").IsString()) {
            const bool isUrl = std::string_view(result.Text()).starts_with("SignerUrl");
            m_report(uploader.At(isUrl ? "SignerUrl" : "SignerHeaders"), result.Text());
        }
    }

    void CheckEndpoint(const ConfigSection<UploaderS3Config>& uploader) {
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
    void CheckAddress(const ConfigSection<UploaderS3Config>& uploader) {
        S3Endpoint endpoint;
        const ResultCode result = ResolveS3Endpoint(StoreOf(uploader.config), endpoint);
        for (const auto& [beginning, key] : {std::pair("Bucket", "BucketName"),
                                             {"Region", "Region"},
                                             {"Access", "AccessKey"},
                                             {"Endpoint", "EndpointOverride"}}) {
            if (!result && std::string_view(result.Text()).starts_with(beginning)) {
                m_report(uploader.At(key), result.Text());
            }
        }
    }

    // Some packager must fill the folder from which packages are sent, under the name that is looked for.
    template <class Config>
    void CheckUploadFolder(const ConfigSection<Config>& uploader,
                           const ConfigSection<WatcherConfig>* watcher) {
        const std::optional<std::string> folder = WatchedFolder(watcher);
        if (!folder || m_sections.ofPackager.empty()) {
            return;
        }
        std::string packaged;
        for (const auto& [name, packager] : m_sections.ofPackager) {
            packaged = WithDefault(packager.config.packagedFolder, DefaultName::PackagedDumps);
            if (packaged != *folder) {
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
                 "The uploader's watcher looks into " + *folder + ", but the packager writes to " + packaged);
    }

    void CheckQuotas() {
        std::set<std::string> dumps;
        std::set<std::string> packaged;
        for (const auto& [name, packager] : m_sections.ofPackager) {
            packaged.insert(WithDefault(packager.config.packagedFolder, DefaultName::PackagedDumps));
            const auto watcher = m_sections.ofWatcher.find(packager.config.watcherName);
            const auto folder =
                WatchedFolder(watcher == m_sections.ofWatcher.end() ? nullptr : &watcher->second);
            if (folder) {
                dumps.insert(*folder);
            }
        }
        for (const auto& [name, quota] : m_sections.ofDiskQuota) {
            CheckQuotaFolder(dumps, WithDefault(quota.config.dumpsFolder, DefaultName::Dumps),
                             quota.At("DumpsFolder"), "the packager's submissions come from ");
            CheckQuotaFolder(packaged, WithDefault(quota.config.packagedFolder, DefaultName::PackagedQuota),
                             quota.At("PackagedFolder"), "the packager writes to ");
        }
    }

    void CheckQuotaFolder(const std::set<std::string>& used, const std::string& limited,
                          const JsonValue& where, const char* use) {
        if (!used.empty() && !used.contains(limited)) {
            m_report(where, "The quota is for " + limited + ", but " + use + *used.begin());
        }
    }

    const ConfigSections& m_sections;
    const ConfigReport& m_report;
};

} // namespace

void CheckPartners(const ConfigSections& sections, const ConfigReport& report) {
    Checker(sections, report).Run();
}

std::string ComparableFolder(std::string_view folder, FolderBase base) {
    const bool isRelative = FolderPath::IsRelative(folder);
    std::vector<std::string> parts;
    while (!folder.empty()) {
        const std::size_t end = folder.find_first_of("\\/");
        std::string part(folder.substr(0, end));
        folder.remove_prefix(end == std::string_view::npos ? folder.size() : end + 1);
        if (part == ".." && !parts.empty() && parts.back() != "..") {
            parts.pop_back();
        } else if (!part.empty() && part != ".") {
            parts.push_back(std::move(part));
        }
    }
    std::string text;
    if (isRelative) {
        text = base == FolderBase::ApplicationFolder ? "<application folder>" : "<current folder>";
    }
    for (const std::string& part : parts) {
        text += text.empty() ? "" : "/";
        for (const char c : part) {
            text += String::LowerAscii(c);
        }
    }
    return text;
}
