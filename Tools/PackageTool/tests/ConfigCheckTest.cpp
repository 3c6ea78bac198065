#include "Tools/PackageTool/src/ConfigCheck.h"

#include <gtest/gtest.h>

#include "Tools/PackageTool/src/ConfigPartners.h"

namespace {

// Everything that a usual pipeline needs; the tests replace parts of it.
constexpr char Good[] = R"({
"$schema": "configuration.schema.json",
"Application": {"Processes": {"Watcher": ["Dumps", "Packages"], "Packager": ["Packager"],
  "UploaderS3": ["Uploader"], "DiskQuota": ["Quota"], "ProcessMonitor": ["Monitor"], "Shutdowner": ["Quit"]},
  "Components": ["CloudComponent"], "ApplicationFolder": ""},
"Dumps": {"Folder": "dumps"},
"Packager": {"WatcherName": "Dumps"},
"Packages": {"Folder": "PackagedDumps", "SentinelFile": "submission.pkg"},
"Uploader": {"WatcherName": "Packages", "BucketName": "crashes", "AccessKey": "AK", "SecretKey": "SK"},
"Quota": {},
"Monitor": {"WatchedApplications": []}
})";

std::string Problems(std::string_view text) {
    std::string lines;
    for (const ConfigProblem& problem : CheckConfig(text)) {
        lines += std::to_string(problem.position.line) + ":" + std::to_string(problem.position.column) +
                 ": " + problem.text + "\n";
    }
    return lines;
}

std::string Replaced(const std::string& part, const std::string& replacement) {
    std::string text = Good;
    const std::size_t at = text.find(part);
    EXPECT_NE(at, std::string::npos) << part;
    return at == std::string::npos ? text : text.replace(at, part.size(), replacement);
}

} // namespace

TEST(CheckConfig, FindsNothingInAUsualPipeline) {
    EXPECT_EQ(Problems(Good), "");
    EXPECT_EQ(Problems(std::string("\xEF\xBB\xBF") + Good), "");
}

TEST(CheckConfig, SaysWhatIsWrongAndWhere) {
    const struct {
        const char* part;
        const char* replacement;
        const char* problems;
    } cases[] = {
        // Keys and kinds, in the reader's words.
        {R"("Folder": "dumps")", R"("folder": "dumps")",
         "6:10: Field not found in json: \"Folder\"\n6:11: Unknown key \"folder\"\n"},
        {R"("Folder": "dumps")", R"("Folder": "dumps", "TimeBetweenChecks": -1, "Folder": "b")",
         "6:51: \"TimeBetweenChecks\": Field not unsigned integer\n"
         "6:55: Key \"Folder\" appears again; only the first counts\n"},
        {R"("WatcherName": "Dumps")",
         R"("WatcherName": "Dumps", "Source": "äö", "AttachmentLimits": [{}, 5])",
         "7:48: \"Source\": Unknown enum value found in data\n"
         "7:75: Field not found in json: \"Extension\"\n"
         "7:75: Field not found in json: \"MaxSize\"\n"
         "7:79: \"AttachmentLimits\": Field not found in json\n"},
        {R"("Application": {)", R"("Applications": {}, "Application": {)",
         "3:1: Unknown key \"Applications\": no process has this name\n"},
        {R"("Quota": {},)", R"("Quota": {}, "Quit": {},)",
         "10:14: Unknown key \"Quit\": a Shutdowner has no section\n"},
        {R"("Quota": {},)", "", "4:45: \"Quota\": configuration section not found\n"},
        {R"("Quota": {},)", R"("Quota": [],)",
         "4:45: \"Quota\": configuration section found is not an object\n"},
        // Classes and names.
        {R"("Shutdowner")", R"("Stopper")", "4:86: \"Stopper\": Failed to find maker for process\n"},
        {R"(["CloudComponent"])", R"(["Cloud"])",
         "4:18: \"Uploader\": UploaderS3 requires CloudComponent for initialization\n"
         "5:18: \"Cloud\": Failed to find maker for component\n"},
        {R"(["Quit"])", R"(["Quota"])", "4:101: \"Quota\" is the name of another process already\n"},
        // Partners.
        {R"("WatcherName": "Dumps")", R"("WatcherName": "Dump")",
         "7:29: \"Dump\": No watcher process to provide submission for packager\n"},
        {R"("WatcherName": "Packages")", R"("WatcherName": "Packager")",
         "9:29: \"Packager\" is a Packager, no Watcher\n"},
        {R"("Folder": "dumps")", R"("Folder": "dumps", "MetricsCollectorName": "M")",
         "6:54: \"M\": No metrics process to provide metrics collection for watcher\n"},
        // Values that fail later.
        {R"("WatcherName": "Dumps")", R"("WatcherName": "Dumps", "AttachmentBlacklist": ["a", "("])",
         "7:67: Invalid regular expression in attachment black list: \"(\", "},
        {R"("AccessKey": "AK")", R"("AccessKey": "")", "9:79: \"AccessKey\" is empty\n"},
        {R"("AccessKey": "AK")", R"("AccessKey": "AK", "EndpointOverride": "ftp://x")",
         "9:13: Endpoint override is not a scheme, a host and a port\n"},
        // Folders and files that do not meet.
        {R"("Folder": "PackagedDumps")", R"("Folder": "Packages")",
         "8:24: The uploader's watcher looks into <application folder>/packages, but the packager writes to "
         "<application folder>/packageddumps\n"},
        {R"("WatcherName": "Dumps")", R"("WatcherName": "Dumps", "PackagedFolder": "PackagedDumps")",
         "8:24: The uploader's watcher looks into <application folder>/packageddumps, but the packager "
         "writes to "
         "<current folder>/packageddumps\n"
         "10:10: The quota is for <application folder>/packageddumps, but the packager writes to "
         "<current folder>/packageddumps\n"},
        {R"(, "SentinelFile": "submission.pkg")", "",
         "8:13: The watcher waits for the sentinel \"header.json\", but uploader \"Uploader\" sends "
         "\"submission.pkg\"\n"},
        {R"("WatcherName": "Dumps")", R"("WatcherName": "Dumps", "SubmissionFilename": "a.pkg")",
         "9:13: The uploader sends \"submission.pkg\", but packager \"Packager\" writes \"a.pkg\"\n"},
        {R"("Quota": {},)", R"("Quota": {"DumpsFolder": "C:\\x"},)",
         "10:26: The quota is for c:/x, but the packager's submissions come from <application "
         "folder>/dumps\n"},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.replacement);
        const std::string problems = Problems(Replaced(row.part, row.replacement));
        EXPECT_EQ(problems.substr(0, std::max<std::size_t>(std::string(row.problems).size(), 1)),
                  row.problems);
    }
}

TEST(CheckConfig, SaysWhyATextIsNoConfiguration) {
    EXPECT_EQ(Problems(""), "1:1: The document is empty.\n");
    EXPECT_EQ(Problems("[]"), "1:1: The configuration is not an object\n");
    EXPECT_EQ(Problems("{}"), "1:1: \"Application\": configuration section not found\n");
    EXPECT_EQ(Problems("{\n  \"ä\": ,\n}"), "2:8: Invalid value.\n");
    EXPECT_EQ(Problems("\xEF\xBB\xBF{,"), "1:2: Missing a name for object member.\n");
}

TEST(CheckConfig, DeepNestingNeedsNoStack) {
    const std::string brackets = std::string(500000, '[') + std::string(500000, ']');
    EXPECT_EQ(Problems(Replaced("\"Quota\": {}", "\"Quota\": " + brackets)),
              "4:45: \"Quota\": configuration section found is not an object\n");
}

TEST(CheckConfig, EveryShorterTextIsReported) {
    const std::string text = Good;
    for (std::size_t size = 0; size < text.size(); ++size) {
        SCOPED_TRACE(size);
        EXPECT_NE(Problems(text.substr(0, size)), "");
    }
}

TEST(FolderAgreement, ComparesWhatATextTells) {

    const struct {
        const char* left;
        const char* right;
    } equal[] = {{"dumps", ".\\Dumps\\"}, {"a/b", R"(a\.\c\..\b)"}, {"C:\\Dumps", "c:/dumps/"}, {"", "."}};
    for (const auto& [left, right] : equal) {
        EXPECT_EQ(ComparableFolder(left, FolderBase::ApplicationFolder),
                  ComparableFolder(right, FolderBase::ApplicationFolder))
            << left;
    }
    EXPECT_NE(ComparableFolder("a", FolderBase::ApplicationFolder),
              ComparableFolder("a", FolderBase::CurrentFolder));
    EXPECT_NE(ComparableFolder("../a", FolderBase::CurrentFolder),
              ComparableFolder("a", FolderBase::CurrentFolder));
}
