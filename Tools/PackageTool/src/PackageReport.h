#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "Libs/Processes/Core/src/BugHeader.h"
#include "Libs/Processes/Core/src/PackageReader.h"
#include "Libs/Tarnel/Reflection/src/Reflection_Declaration.h"
#include "Tools/PackageTool/src/Progress.h"

// What the tool has to say about packages: the records of --json, from which the text is written too.

struct ReportedEntry {
    std::string name;
    uint64_t offset = 0;       // in the package
    uint64_t storedSize = 0;   // bytes
    int64_t unpackedSize = -1; // bytes; -1 when it can't be unpacked
    std::string digest;        // as recorded
    std::string path;          // where it was unpacked to; empty when it was not
};
Reflection_DeclareType(ReportedEntry);

struct ReportedProblem {
    uint64_t offset = 0; // in the package
    std::string text;
};
Reflection_DeclareType(ReportedProblem);

struct PackageReport {
    std::string file;
    uint64_t size = 0; // bytes
    BugHeader header;
    std::vector<ReportedEntry> entries;
    std::vector<ReportedProblem> problems;
};
Reflection_DeclareType(PackageReport);

struct PackageReports {
    std::vector<PackageReport> packages;
};
Reflection_DeclareType(PackageReports);

PackageReport MakeReport(const std::string& file, uint64_t size, const PackageReader& reader);

// Where an entry's content goes; false refuses the rest of it.
using ContentSink = std::function<bool(std::span<const uint8_t> piece)>;

// Decompresses the entry into sink, which may be empty, notes its size or its problem, and takes what it gave
// from limit; progress advances by the entry's size. False when the content is not whole.
bool UnpackEntry(const PackageEntry& entry, std::size_t index, const ContentSink& sink, uint64_t& limit,
                 Progress& progress, PackageReport& report);

// Texts for people, with their line ends.
std::string ReportTable(const PackageReport& report);
std::string ReportProblems(const PackageReport& report); // a line for each

// One object with all of them.
std::string ReportJson(const PackageReports& reports);
