#include "Tools/PackageTool/src/Report.h"

#include <algorithm>

#include "Libs/Processes/Cloud/src/S3Upload.h"
#include "Libs/Processes/Core/src/FolderPath.h"
#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_Serializer.h"
#include "Tools/PackageTool/src/CallStack.h"

Reflection_DefineType(ReportedEntry, Reflection_Field(name, "Name"), Reflection_Field(offset, "Offset"),
                      Reflection_Field(storedSize, "StoredSize"),
                      Reflection_Field(unpackedSize, "UnpackedSize"), Reflection_Field(digest, "MD5"),
                      Reflection_Field(path, "Path"));
Reflection_DefineType(ReportedProblem, Reflection_Field(offset, "Offset"), Reflection_Field(text, "Text"));
Reflection_DefineType(PackageReport, Reflection_Field(file, "File"), Reflection_Field(size, "Size"),
                      Reflection_Field(digest, "MD5"), Reflection_Field(header, "Header"),
                      Reflection_Field(frames, "Frames"), Reflection_Field(entries, "Entries"),
                      Reflection_Field(problems, "Problems"));
Reflection_DefineType(PackageReports, Reflection_Field(packages, "Packages"));

namespace {

// A longer name shifts the columns of its own row only. If it widened all rows, a small package could make a
// table of any size.
constexpr std::size_t WidestName = 60;

std::size_t ShownLength(const std::string& text) {
    // All bytes but UTF-8's continuation bytes.
    return static_cast<std::size_t>(
        std::count_if(text.begin(), text.end(), [](char c) { return (c & 0xC0) != 0x80; }));
}

std::string Padded(const std::string& text, std::size_t width) {
    return text + std::string(width - std::min(width, ShownLength(text)), ' ');
}

std::string RightAligned(const std::string& text, std::size_t width) {
    return std::string(width - std::min(width, text.size()), ' ') + text;
}

// Empty for a header without one, or one that could not be read that far.
std::string VersionText(const VersionInfo& version, uint32_t changelist) {
    if ((version.major | version.minor | version.rev | version.build | changelist) == 0) {
        return {};
    }
    return std::to_string(version.major) + "." + std::to_string(version.minor) + "." +
           std::to_string(version.rev) + "." + std::to_string(version.build) + " (" +
           std::to_string(changelist) + ")";
}

std::string CallStackText(const BugHeader& header) {
    if (header.callstack.empty() && header.moduleInfo.empty()) {
        return {};
    }
    return Console::Count(header.callstack.size(), "frame") + ", " +
           Console::Count(header.moduleInfo.size(), "module");
}

std::string FrameLines(const PackageReport& report) {
    std::string text;
    for (const std::string& frame : report.frames) {
        text += std::string(16, ' ') + Console::Printable(frame) + "\n";
    }
    const std::size_t more = report.header.callstack.size() - report.frames.size();
    return more == 0 ? text : text + std::string(16, ' ') + "and " + std::to_string(more) + " more\n";
}

std::string HeaderLines(const PackageReport& report) {
    const BugHeader& header = report.header;
    const std::pair<const char*, std::string> rows[] = {
        {"MD5", report.digest},
        {"Application", header.application},
        {"Host", header.host},
        {"Time", header.time},
        {"Submission", header.submissionType},
        {"Message", header.exception.message},
        {"Instance key", header.instanceKey},
        {"Key", header.key},
        {"Version", VersionText(header.version, header.changelist)},
        {"Call stack", CallStackText(header)},
    };
    std::string text;
    for (const auto& [name, value] : rows) {
        if (!value.empty()) {
            text += "  " + Padded(name, 14) + Console::Printable(value) + "\n";
        }
    }
    return text + FrameLines(report);
}

std::string EntryName(const ReportedEntry& entry) {
    return entry.name.empty() ? "(no name)" : Console::Printable(entry.name);
}

std::string EntryTable(const std::vector<ReportedEntry>& entries) {
    std::size_t width = 4;
    for (const ReportedEntry& entry : entries) {
        width = std::max(width, ShownLength(EntryName(entry)));
    }
    width = std::min(width, WidestName);
    std::string text = "\n  " + Padded("Name", width) + RightAligned("Stored", 14) +
                       RightAligned("Unpacked", 14) + "  MD5 of the stored bytes\n";
    for (const ReportedEntry& entry : entries) {
        text += "  " + Padded(EntryName(entry), width) + RightAligned(std::to_string(entry.storedSize), 14) +
                RightAligned(entry.unpackedSize < 0 ? "unknown" : std::to_string(entry.unpackedSize), 14) +
                "  " + entry.digest + "\n";
    }
    return text;
}

std::string ReportTable(const PackageReport& report) {
    std::string text = Console::Printable(report.file) + ": " + std::to_string(report.size) + " bytes\n";
    text += HeaderLines(report);
    return report.entries.empty() ? text : text + EntryTable(report.entries);
}

// A line for each.
std::string ReportProblems(const PackageReport& report) {
    std::string text;
    for (const ReportedProblem& problem : report.problems) {
        text += Console::Printable(report.file + ": " + ProblemText(problem)) + "\n";
    }
    return text;
}

std::string VerifyLine(const PackageReport& report) {
    if (!report.problems.empty()) {
        return ReportProblems(report);
    }
    return Console::Printable(report.file) + ": good, " + Console::Count(report.entries.size(), "file") +
           "\n";
}

// The files that the command line names; of a folder all that are in it and below.
std::vector<std::string> FilesOf(const Arguments& arguments, ExitCode& code) {
    std::vector<std::string> files;
    for (const std::string& name : arguments.files) {
        if (name == "-" || arguments.command == "unpack" || !Console::IsFolder(name)) {
            files.push_back(name);
            continue;
        }
        std::vector<std::string> inside;
        if (!Console::ListFiles(name, inside)) {
            Console::PrintError(name, "The folder could not be listed whole");
            Raise(code, ExitCode::NotReadOrWritten);
        }
        for (const std::string& file : inside) {
            files.push_back(FolderPath::Join(name, file));
        }
    }
    return files;
}

// A line for an engine; a package with problems has none, so that its columns hold nothing half read.
void PrintLine(const PackageReport& report) {
    if (report.problems.empty()) {
        Console::PrintJson(report);
    }
    for (const ReportedProblem& problem : report.problems) {
        Console::PrintError(report.file, ProblemText(problem));
    }
}

// Notes the unpacked size of each entry.
void MeasureEntries(Platform::ByteSource& package, const PackageReader& reader, uint64_t limit,
                    Progress& progress, PackageReport& report) {
    for (std::size_t i = 0; i < reader.GetEntries().size(); ++i) {
        // A failure is in the report.
        static_cast<void>(UnpackEntry(package, reader.GetEntries()[i], i, {}, limit, progress, report));
    }
}

} // namespace

ExitCode RunList(const Arguments& arguments) {
    const auto work = [&](const std::string& file, Platform::ByteSource& package) {
        Progress progress(file, package.GetSize());
        const PackageReader reader(package);
        PackageReport report = MakeReport(file, package, reader);
        MeasureEntries(package, reader, arguments.limit, progress, report);
        return report;
    };
    return ForEachPackage(arguments, work, [](const PackageReport& report) {
        return ReportTable(report) + ReportProblems(report);
    });
}

ExitCode RunVerify(const Arguments& arguments) {
    const auto work = [&](const std::string& file, Platform::ByteSource& package) {
        Progress progress(file, 2 * package.GetSize()); // the digests read it, then unpacking does
        PackageReader reader(package);
        reader.CheckDigests([&](uint64_t bytes) { progress.Advance(bytes); });
        PackageReport report = MakeReport(file, package, reader);
        MeasureEntries(package, reader, arguments.limit, progress, report);
        return report;
    };
    return ForEachPackage(arguments, work, &VerifyLine);
}

std::string ProblemText(const ReportedProblem& problem) {
    return "offset " + std::to_string(problem.offset) + ": " + problem.text;
}

PackageReport MakeReport(const std::string& file, Platform::ByteSource& package,
                         const PackageReader& reader) {
    PackageReport report;
    PutObjectRequest request;
    // Nobody sees the report of a package that can't be read.
    static_cast<void>(RequestForPackage(package, request));
    report.file = file;
    report.size = package.GetSize();
    report.digest = request.key;
    report.header = reader.GetHeader();
    report.frames = ShownFrames(report.header);
    for (const PackageEntry& entry : reader.GetEntries()) {
        report.entries.push_back(
            {Console::WithSlashes(entry.name), entry.offset, entry.size, -1, entry.digest, ""});
    }
    for (const PackageProblem& problem : reader.GetProblems()) {
        report.problems.push_back({problem.offset, problem.text});
    }
    return report;
}

bool UnpackEntry(Platform::ByteSource& package, const PackageEntry& entry, std::size_t index,
                 const ContentSink& sink, uint64_t& limit, Progress& progress, PackageReport& report) {
    PlatformHelpers::InflateProgress inflated;
    uint64_t shown = 0;
    const auto take = [&](std::span<const uint8_t> piece) {
        progress.Advance(inflated.consumed - shown);
        shown = inflated.consumed;
        return sink ? sink(piece) : Platform::Success;
    };
    const ResultCode result =
        PlatformHelpers::Decompress(package, entry.DataOffset(), entry.size, limit, take, inflated);
    progress.Advance(entry.size - shown);
    limit -= inflated.produced;
    if (!result) {
        report.problems.push_back(
            {entry.DataOffset() + inflated.consumed, "\"" + entry.name + "\": " + result.Text()});
        return false;
    }
    report.entries[index].unpackedSize = static_cast<int64_t>(inflated.produced);
    return true;
}

ExitCode ForEachPackage(const Arguments& arguments, const PackageWork& work, const PackageText& textOf) {
    ExitCode code = ExitCode::Good;
    PackageReports reports;
    for (const std::string& file : FilesOf(arguments, code)) {
        std::string reason;
        Console::Input input;
        PackageReport report;
        if (Platform::ByteSource* const package = input.Open(file, reason)) {
            report = work(file, *package);
            reason = package->HasFailed() ? Platform::ReadFailure : "";
        }
        if (!reason.empty()) {
            Console::PrintError(file, reason);
            Raise(code, ExitCode::NotReadOrWritten);
            continue;
        }
        if (!report.problems.empty()) {
            Raise(code, ExitCode::ProblemsFound);
        }
        if (arguments.ndjson) {
            PrintLine(report);
        } else if (arguments.json) {
            reports.packages.push_back(std::move(report));
        } else {
            Console::Print(textOf(report));
        }
    }
    if (arguments.json) {
        Console::PrintJson(reports);
    }
    return code;
}
