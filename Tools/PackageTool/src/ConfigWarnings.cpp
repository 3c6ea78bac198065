#include "Tools/PackageTool/src/ConfigWarnings.h"

#include <algorithm>
#include <vector>

#include "Libs/Shared/src/JsonConfig.h"
#include "Libs/Tarnel/String/src/String_Ascii.h"

namespace {

// Of the recommended configurations in docs.
constexpr const char* Placeholders[] = {"My Game", "MyGame.exe", "my-crashes",
                                        "AKIA...", "...",        "https://signer.example/"};

void WarnOfText(const JsonValue& value, const ConfigReport& warn) {
    const std::string text = TextOf(value);
    if (std::ranges::find(Placeholders, text) != std::end(Placeholders)) {
        warn(value, Quoted(text) + " is a placeholder of the template");
    } else if (text.starts_with(' ') || text.ends_with(' ')) {
        warn(value, Quoted(text) + " has a blank at its end or start");
    }
}

// Every text but names of keys, what is for people, and expressions, in which blanks have a meaning.
void WarnOfTexts(const JsonValue& document, const ConfigReport& warn) {
    std::vector<const JsonValue*> open = {&document};
    while (!open.empty()) {
        const JsonValue& value = *open.back();
        open.pop_back();
        if (value.IsString()) {
            WarnOfText(value, warn);
        } else if (value.IsArray()) {
            for (const JsonValue& element : value.GetArray()) {
                open.push_back(&element);
            }
        } else if (value.IsObject()) {
            for (const JsonValue::Member& member : value.GetObject()) {
                const std::string key = TextOf(member.name);
                if (!ConfigKeys::IsForPeople(key) && key != "AttachmentBlacklist") {
                    open.push_back(&member.value);
                }
            }
        }
    }
}

// warn is called with each text of that array which the question is true for.
template <class Question>
void WarnOfElements(const JsonValue& array, const char* key, Question isWrong, const char* reason,
                    const ConfigReport& warn) {
    if (!array.IsArray()) {
        return; // left out, or reported already
    }
    for (const JsonValue& element : array.GetArray()) {
        const JsonValue* value = &element;
        if (key && element.IsObject()) {
            const auto member = element.FindMember(key);
            value = member == element.MemberEnd() ? &element : &member->value;
        }
        if (value->IsString() && isWrong(TextOf(*value))) {
            warn(*value, Quoted(TextOf(*value)) + reason);
        }
    }
}

// "us-east-1": what Amazon's regions look like. The signature has it in lower case.
bool LooksLikeRegion(const std::string& region) {
    const std::size_t lastDash = region.rfind('-');
    return std::ranges::count(region, '-') >= 2 && lastDash + 2 == region.size() && region.back() >= '1' &&
           region.back() <= '9' && std::ranges::all_of(region.substr(0, lastDash), [](char c) {
               return c == '-' || (c >= 'a' && c <= 'z');
           });
}

bool HasPath(const std::string& name) {
    return name.find_first_of("\\/:") != std::string::npos;
}

void WarnOfPaths(const JsonValue& document, const ApplicationConfig& application, const ConfigReport& warn) {
    const auto section = document.FindMember("Application");
    if (HasPath(application.applicationFolder)) {
        warn(section->value["ApplicationFolder"],
             "ApplicationFolder is a name in the user's Documents folder, no path");
    }
    if (HasPath(application.logFile)) {
        warn(section->value["LogFile"], "LogFile is a name in the log folder, no path");
    }
}

void WarnOfMonitor(const ConfigSection<ProcessMonitorConfig>& monitor, const ConfigReport& warn) {
    const JsonValue& watched = monitor.At("WatchedApplications");
    const auto hasNoEnding = [](const std::string& game) {
        return !game.empty() && !String::LowerAscii(game).ends_with(".exe");
    };
    WarnOfElements(watched, nullptr, HasPath, " has a path: give the file's name alone", warn);
    WarnOfElements(watched, nullptr, hasNoEnding, " matches no program: it does not end in .exe", warn);
}

void WarnOfPackager(const ConfigSection<PackagerConfig>& packager, const ConfigReport& warn) {
    const auto isPattern = [](const std::string& ending) { return ending.find('*') != std::string::npos; };
    WarnOfElements(packager.At("AttachmentLimits"), "Extension", isPattern,
                   " matches no file: it is an ending such as .log, no pattern", warn);
}

void WarnOfWatcher(const ConfigSection<WatcherConfig>& watcher, const ConfigReport& warn) {
    const std::string& file = watcher.config.sentinelFile;
    for (const char* const usual : {HeaderFile::Name, DefaultName::Package}) {
        if (file != usual && String::LowerAscii(file) == usual) {
            warn(watcher.At("SentinelFile"),
                 Quoted(file) + " differs from " + Quoted(usual) + " in letter case");
        }
    }
}

void WarnOfUploader(const ConfigSection<UploaderS3Config>& uploader, const ConfigReport& warn) {
    const std::string& region = uploader.config.region;
    if (uploader.config.endpointOverride.empty() && !LooksLikeRegion(region)) {
        warn(uploader.At("Region"), Quoted(region) + " is no region of Amazon's, such as us-east-1");
    }
}

void WarnOfQuota(const ConfigSection<DiskQuotaConfig>& quota, const ConfigReport& warn) {
    if (quota.config.dumpsQuota == 0) {
        warn(quota.At("DumpsQuota"), "A quota of 0 deletes every submission before it is packaged");
    }
    if (quota.config.packagedQuota == 0) {
        warn(quota.At("PackagedQuota"), "A quota of 0 deletes every package before it is sent");
    }
}

} // namespace

void CheckWarnings(const JsonDocument& document, const ConfigSections& sections, const ConfigReport& warn) {
    WarnOfTexts(document, warn);
    WarnOfPaths(document, sections.application, warn);
    const auto each = [&warn](const auto& sectionsOfClass, auto warnOfOne) {
        for (const auto& [name, section] : sectionsOfClass) {
            warnOfOne(section, warn);
        }
    };
    each(sections.ofProcessMonitor, WarnOfMonitor);
    each(sections.ofPackager, WarnOfPackager);
    each(sections.ofWatcher, WarnOfWatcher);
    each(sections.ofUploaderS3, WarnOfUploader);
    each(sections.ofDiskQuota, WarnOfQuota);
}
