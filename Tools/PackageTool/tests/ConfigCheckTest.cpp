#include "Tools/PackageTool/src/ConfigCheck.h"

#include <gtest/gtest.h>

namespace {

// Everything that a usual pipeline needs; the tests replace parts of it.
constexpr char Good[] = R"({
"$schema": "configuration.schema.json", "// note": 1,
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
    for (const JsonProblem& problem : CheckConfig(text)) {
        lines += (lines.empty() ? "" : "\n") + std::to_string(problem.position.line) + ":" +
                 std::to_string(problem.position.column) + (problem.isWarning ? ": warning: " : ": ") +
                 problem.text;
    }
    return lines;
}

std::string Replaced(const std::string& part, const std::string& replacement) {
    std::string text = Good;
    return text.replace(text.find(part), part.size(), replacement);
}

} // namespace

TEST(ConfigCheck, SaysWhatIsWrongAndWhere) {
    const struct {
        const char* part; // of the good configuration
        const char* replacement;
        const char* problems;
    } rows[] = {
        // Keys and types
        {R"("Folder": "dumps")", R"("Folder": "dumps", "TimeBetweenChecks": -1, "Folder": "b")",
         "6:51: \"TimeBetweenChecks\": Field not unsigned integer\n6:55: Key \"Folder\" appears again; only "
         "the first counts"},
        {R"("WatcherName": "Dumps")",
         R"("WatcherName": "Dumps", "Source": "äö", "AttachmentLimits": [{}, 5])",
         "7:48: \"Source\": Unknown enum value found in data\n7:75: Field not found in json: "
         "\"Extension\"\n7:75: Field not found in json: \"MaxSize\"\n7:79: \"AttachmentLimits\": Field not "
         "found in json"},
        {R"("Application": {)", R"("Applications": {}, "Application": {)",
         "3:1: Unknown key \"Applications\": no process has this name"},
        {R"("Quota": {},)", R"("Quota": {}, "Quit": {},)",
         "10:14: Unknown key \"Quit\": a Shutdowner has no section"},
        // Classes and partners
        {R"(["CloudComponent"])", R"(["Cloud"])",
         "4:18: \"Uploader\": UploaderS3 requires CloudComponent for initialization\n5:18: \"Cloud\": Failed "
         "to find maker for component"},
        {R"("Packager": ["Packager"])", R"("Watcher": ["Dumps"], "Packager": ["Packager"])",
         "3:65: Class \"Watcher\" appears again; only this list counts\n8:1: Unknown key \"Packages\": no "
         "process has this name\n9:29: \"Packages\": No watcher process to provide submissions for uploader"},
        {R"("WatcherName": "Packages")", R"("WatcherName": "Packager")",
         "9:29: \"Packager\" is a Packager, no Watcher"},
        // Values that fail later
        {R"("AccessKey": "AK")", R"("AccessKey": "")", "9:79: \"AccessKey\" is empty"},
        {R"("AccessKey": "AK")", R"("AccessKey": "AK", "EndpointOverride": "ftp://x")",
         "9:105: Endpoint override is not a scheme, a host and a port"},
        {R"("Shutdowner": ["Quit"]},
  "Components": ["CloudComponent"], "ApplicationFolder": ""},)",
         R"("UploaderPresigned": ["Keyless", "Key"]}},
"Keyless": {"WatcherName": "Packages", "SignerUrl": "http://x/"}, "Key": {"WatcherName": "Packages",
  "SignerUrl": "https://x/", "SignerHeaders": {"host": "y"}, "AccessKey": "A"},)",
         "4:18: \"Uploader\": UploaderS3 requires CloudComponent for initialization\n5:53: SignerUrl is not "
         "an "
         "https address\n6:47: SignerHeaders has a header that can't be sent\n6:62: Unknown key "
         "\"AccessKey\", did "
         "you mean \"WatcherName\"?"},
        {R"("AccessKey": "AK")", R"("AccessKey": "AK", "ReceiptFile": "C:/sent")",
         "9:100: \"C:/sent\" is not inside the application folder"},
        // Warnings of what is hardly meant
        {R"("AK", "SecretKey": "SK")", R"("AKIA...", "SecretKey": "SK ")",
         "9:79: warning: \"AKIA...\" is a placeholder of the template\n9:103: warning: \"SK \" has a blank "
         "at its "
         "end or start"},
        {R"("WatchedApplications": [])", R"("WatchedApplications": ["game", "C:\\game.exe"])",
         "11:37: warning: \"game\" matches no program: it does not end in .exe\n11:45: warning: "
         "\"C:\\game.exe\" "
         "has a path: give the file's name alone"},
        {R"("ApplicationFolder": "")", R"("ApplicationFolder": "C:/Game")",
         "5:58: warning: ApplicationFolder is a name in the user's Documents folder, no path"},
        {R"("WatcherName": "Dumps")",
         R"("WatcherName": "Dumps", "AttachmentLimits": [{"Extension": "*.log", "MaxSize": 1}])",
         "7:73: warning: \"*.log\" matches no file: it is an ending such as .log, no pattern"},
        {R"("AccessKey": "AK")", R"("Region": "us-east", "AccessKey": "AK")",
         "9:76: warning: \"us-east\" is no region of Amazon's, such as us-east-1"},
        {R"("Quota": {})", R"("Quota": {"PackagedQuota": 0})",
         "10:28: warning: A quota of 0 deletes every package before it is sent"},
        {R"("Folder": "dumps")", R"("Folder": "dumps", "SentinelFile": "Header.json")",
         "6:46: warning: \"Header.json\" differs from \"header.json\" in letter case"},
        // Folders and files that do not meet
        {R"("Folder": "dumps")", R"("Folder": ".\\packageddumps/")",
         "7:13: PackagedFolder is the folder that the packager's watcher watches\n10:10: The quota is for "
         "<application folder>/dumps, but the packager's submissions come from <application "
         "folder>/packageddumps"},
        {R"("Folder": "dumps")", R"("Folder": "")",
         "7:13: PackagedFolder is inside the folder that the packager's watcher watches\n7:13: "
         "PackageWorkFolder is inside the folder that the packager's watcher watches\n10:10: The quota is "
         "for <application folder>/dumps, but the packager's submissions come from <application folder>"},
        {R"("WatcherName": "Dumps")", R"("WatcherName": "Dumps", "PackagedFolder": "PackagedDumps")",
         "8:24: The uploader's watcher looks into <application folder>/packageddumps, but the packager "
         "writes to <current folder>/packageddumps\n10:10: The quota is for <application "
         "folder>/packageddumps, but the packager writes to <current folder>/packageddumps"},
        {R"(, "SentinelFile": "submission.pkg")", "",
         "8:13: The watcher waits for the sentinel \"header.json\", but uploader \"Uploader\" sends "
         "\"submission.pkg\""},
        {R"("WatcherName": "Dumps")", R"("WatcherName": "Dumps", "SubmissionFilename": "a.pkg")",
         "9:13: The uploader sends \"submission.pkg\", but packager \"Packager\" writes \"a.pkg\""},
        {R"("Quota": {},)", R"("Quota": {"DumpsFolder": "C:\\x"},)",
         "10:26: The quota is for c:/x, but the packager's submissions come from <application folder>/dumps"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Problems(Replaced(row.part, row.replacement)), row.problems) << row.replacement;
    }
}

TEST(ConfigCheck, TextsThatAreNoConfiguration) {
    static constexpr const char* rows[][2] = {
        {"", "1:1: The document is empty."},
        {"\xFF\xFE{", "1:1: The file is UTF-16; save it as UTF-8"},
        {"{}", "1:1: \"Application\": configuration section not found"},
        {"{\n  \"ä\": ,\n}", "2:8: Invalid value."},
        {"\xEF\xBB\xBF{,", "1:2: Missing a name for object member."},
    };
    for (const auto& [text, expected] : rows) {
        EXPECT_EQ(Problems(text), expected);
    }
}
