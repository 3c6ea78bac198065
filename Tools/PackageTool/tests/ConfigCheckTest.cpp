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
        {R"("Folder": "dumps")",
         R"("Folder": "dumps", "SentinelFile": "Header.json", "TimeBetweenChecks": -1, "Folder": "b")",
         R"(6:46: warning: "Header.json" differs from "header.json" in letter case
6:82: "TimeBetweenChecks": Field not unsigned integer
6:86: Key "Folder" appears again; only the first counts)"},
        {R"("WatcherName": "Dumps")",
         R"("WatcherName": "Dumps", "Source": "äö", "AttachmentLimits": [{"Extension": "*.log", "MaxSize": 1}, {}, 5])",
         R"(7:48: "Source": Unknown enum value found in data
7:89: warning: "*.log" matches no file: it is an ending such as .log, no pattern
7:113: Field not found in json: "Extension"
7:113: Field not found in json: "MaxSize"
7:117: "AttachmentLimits": Field not found in json)"},
        {R"(["CloudComponent"], "ApplicationFolder": "")", R"(["Cloud"], "ApplicationFolder": "C:/Game")",
         R"(4:18: "Uploader": UploaderS3 requires CloudComponent for initialization
5:18: "Cloud": Failed to find maker for component
5:49: warning: ApplicationFolder is a name in the user's Documents folder, no path)"},
        {R"("Quota": {},
"Monitor": {"WatchedApplications": []})",
         R"("Quota": {"PackagedQuota": 0, "DumpsFolder": "C:\\x"}, "Quit": {}, "More": {},
"Monitor": {"WatchedApplications": ["game", "C:\\game.exe"]})",
         R"(10:28: warning: A quota of 0 deletes every package before it is sent
10:46: The quota is for c:/x, but the packager's submissions come from <application folder>/dumps
10:56: Unknown key "Quit": a Shutdowner has no section
10:68: Unknown key "More": no process has this name
11:37: warning: "game" matches no program: it does not end in .exe
11:45: warning: "C:\game.exe" has a path: give the file's name alone)"},
        // Values that fail later, or are hardly meant
        {R"("AccessKey": "AK", "SecretKey": "SK")",
         R"("AccessKey": "AKIA...", "EndpointOverride": "ftp://x", "ReceiptFile": "C:/sent", "SecretKey": "SK ")",
         R"(9:79: warning: "AKIA..." is a placeholder of the template
9:110: Endpoint override is not a scheme, a host and a port
9:136: "C:/sent" is not inside the application folder
9:160: warning: "SK " has a blank at its end or start)"},
        {R"("AK")", R"("")", R"(9:79: "AccessKey" is empty)"},
        {R"("AK")", R"("AK", "Region": "us-east")",
         R"(9:95: warning: "us-east" is no region of Amazon's, such as us-east-1)"},
        {R"("Shutdowner": ["Quit"]},
  "Components": ["CloudComponent"], "ApplicationFolder": ""},)",
         R"("UploaderPresigned": ["Keyless", "Key"]}},
"Keyless": {"WatcherName": "Packages", "SignerUrl": "http://x/"}, "Key": {"WatcherName": "Packages",
  "SignerUrl": "https://x/", "SignerHeaders": {"host": "y"}, "AccessKey": "A"},)",
         R"(4:18: "Uploader": UploaderS3 requires CloudComponent for initialization
5:53: SignerUrl is not an https address
6:47: SignerHeaders has a header that can't be sent
6:62: Unknown key "AccessKey", did you mean "WatcherName"?)"},
        // Partners, folders and files that do not meet
        {R"("Packager": ["Packager"])", R"("Watcher": ["Dumps"], "Packager": ["Packager"])",
         R"(3:65: Class "Watcher" appears again; only this list counts
8:1: Unknown key "Packages": no process has this name
9:29: "Packages": No watcher process to provide submissions for uploader)"},
        {R"("WatcherName": "Packages")", R"("WatcherName": "Packager")",
         R"(9:29: "Packager" is a Packager, no Watcher)"},
        {R"("Folder": "dumps")", R"("Folder": ".\\packageddumps/")",
         R"(7:13: PackagedFolder is the folder that the packager's watcher watches
10:10: The quota is for <application folder>/dumps, but the packager's submissions come from <application folder>/packageddumps)"},
        {R"("Folder": "dumps")", R"("Folder": "")",
         R"(7:13: PackagedFolder is inside the folder that the packager's watcher watches
7:13: PackageWorkFolder is inside the folder that the packager's watcher watches
10:10: The quota is for <application folder>/dumps, but the packager's submissions come from <application folder>)"},
        {R"("Folder": "dumps")", R"("Folder": "PackagedDumps/dumps")",
         R"(7:13: PackagedFolder has inside it the folder that the packager's watcher watches
10:10: The quota is for <application folder>/dumps, but the packager's submissions come from <application folder>/packageddumps/dumps)"},
        {R"("WatcherName": "Dumps")", R"("WatcherName": "Dumps", "PackagedFolder": "PackagedDumps")",
         R"(8:24: The uploader's watcher looks into <application folder>/packageddumps, but the packager writes to <current folder>/packageddumps
10:10: The quota is for <application folder>/packageddumps, but the packager writes to <current folder>/packageddumps)"},
        {R"(, "SentinelFile": "submission.pkg")", "",
         R"(8:13: The watcher waits for the sentinel "header.json", but uploader "Uploader" sends "submission.pkg")"},
        {R"("WatcherName": "Dumps")", R"("WatcherName": "Dumps", "SubmissionFilename": "a.pkg")",
         R"(9:13: The uploader sends "submission.pkg", but packager "Packager" writes "a.pkg")"},
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
