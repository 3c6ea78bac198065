#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "Libs/Framework/Core/src/Gzip.h"
#include "Libs/Processes/Core/src/BugHeader.h"
#include "Libs/Processes/Core/src/PackageReader.h"
#include "Libs/Tarnel/Reflection/src/Reflection_Declaration.h"
#include "Tools/PackageTool/src/Arguments.h"
#include "Tools/PackageTool/src/Console.h"

// What the tool says about packages: the records of --json, from which the text is written too, and the
// commands that only say it. Everything here may throw std::bad_alloc.

struct ReportedEntry {
    std::string name;          // with "/" between its parts
    uint64_t offset = 0;       // in the package
    uint64_t storedSize = 0;   // bytes
    int64_t unpackedSize = -1; // bytes; -1 if it can't be unpacked
    std::string digest;        // as recorded
    std::string path;          // the file it was unpacked to; empty if it was not
};
Reflection_DeclareType(ReportedEntry);

struct ReportedProblem {
    uint64_t offset = 0; // in the package
    std::string text;
};
Reflection_DeclareType(ReportedProblem);
std::string ProblemText(const ReportedProblem& problem); // offset 48: text

struct PackageReport {
    std::string file;
    uint64_t size = 0;  // bytes
    std::string digest; // MD5 of the package, under which the store has it
    BugHeader header;
    std::vector<std::string> frames; // see ShownFrames
    std::vector<ReportedEntry> entries;
    std::vector<ReportedProblem> problems;
};
Reflection_DeclareType(PackageReport);

struct PackageReports {
    std::vector<PackageReport> packages;
};
Reflection_DeclareType(PackageReports);

ExitCode RunList(const Arguments& arguments);
ExitCode RunVerify(const Arguments& arguments);

PackageReport MakeReport(const std::string& file, Platform::ByteSource& package, const PackageReader& reader);

// Takes an entry's content piece by piece; a failure refuses the rest.
using ContentSink = PlatformHelpers::GzipSink;

// Decompresses the package's entry into sink, which may be empty, and notes its size or its problem. What it
// gave is taken from limit; progress advances by the entry's stored size. False if the content is not whole.
bool UnpackEntry(Platform::ByteSource& package, const PackageEntry& entry, std::size_t index,
                 const ContentSink& sink, uint64_t& limit, Progress& progress, PackageReport& report);

// Opens each package, has the work done, and prints the result: as text or as a line of JSON at once, as one
// JSON object at the end. Goes on after a package that can't be read.
using PackageWork = std::function<PackageReport(const std::string& file, Platform::ByteSource& package)>;
using PackageText = std::function<std::string(const PackageReport& report)>;
ExitCode ForEachPackage(const Arguments& arguments, const PackageWork& work, const PackageText& textOf);
