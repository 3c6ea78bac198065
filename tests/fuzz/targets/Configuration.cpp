// Whatever the agent refuses, check-config reports, and its places lie in the text.
#include <algorithm>
#include <tuple>

#include "Libs/Processes/Cloud/src/UploaderS3Config.h"
#include "Libs/Processes/Core/src/AttachmentBlacklist.h"
#include "Libs/Processes/Core/src/ProcessConfigs.h"
#include "Libs/Shared/src/JsonConfig.h"
#include "Tools/PackageTool/src/ConfigCheck.h"
#include "Tools/PackageTool/src/ConfigSections.h"
#include "tests/fuzz/Fuzz.h"

namespace {

template <class Config>
bool AgentReads(const JsonDocument& document, const std::string& name) {
    Config config;
    return ReadConfigSection(document, name.c_str(), config).Succeeded();
}

template <>
bool AgentReads<PackagerConfig>(const JsonDocument& document, const std::string& name) {
    PackagerConfig config;
    AttachmentBlacklist blacklist;
    AttachmentBlacklist::BadPattern bad;
    return ReadConfigSection(document, name.c_str(), config).Succeeded() &&
           blacklist.Compile(config.attachmentBlacklist, bad).Succeeded();
}

bool AgentStarts(const JsonDocument& document, const std::string& processClass, const std::string& name) {
    const std::pair<const char*, bool (*)(const JsonDocument&, const std::string&)> readers[] = {
        {"DiskQuota", &AgentReads<DiskQuotaConfig>},
        {"Packager", &AgentReads<PackagerConfig>},
        {"ProcessMonitor", &AgentReads<ProcessMonitorConfig>},
        {"UploaderS3", &AgentReads<UploaderS3Config>},
        {"Watcher", &AgentReads<WatcherConfig>},
    };
    for (const auto& [known, reads] : readers) {
        if (processClass == known) {
            return reads(document, name);
        }
    }
    return FindProcessClass(processClass) != nullptr;
}

bool AgentTakes(std::string_view text) {
    JsonDocument document;
    ApplicationConfig application;
    if (!JsonSerialization::ParseText(text, document) ||
        !ReadConfigSection(document, "Application", application)) {
        return false;
    }
    const auto startsAll = [&](const auto& named) {
        return std::all_of(named.second.begin(), named.second.end(),
                           [&](const std::string& name) { return AgentStarts(document, named.first, name); });
    };
    return std::all_of(application.processes.begin(), application.processes.end(), startsAll);
}

} // namespace

void FuzzOne(std::span<const uint8_t> input) {
    const std::string_view text = Fuzz::Text(input);
    const auto lines = static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n')) + 1;
    std::size_t lastLine = 1;
    std::size_t lastColumn = 1;
    const std::vector<ConfigProblem> problems = CheckConfig(text);
    for (const ConfigProblem& problem : problems) {
        const auto& [line, column] = problem.position;
        FUZZ_REQUIRE(!problem.text.empty());
        FUZZ_REQUIRE(line <= lines && column <= text.size() + 1);
        FUZZ_REQUIRE(std::tie(lastLine, lastColumn) <= std::tie(line, column));
        lastLine = line;
        lastColumn = column;
    }
    FUZZ_REQUIRE(AgentTakes(text) || !problems.empty());
}
