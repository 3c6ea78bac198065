#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "Libs/Shared/src/JsonProblems.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_ResultCode.h"
#include "Libs/Tarnel/Reflection/src/Reflection_Declaration.h"

// The crash header, header.json: plain records that the game writes, the packager completes and the package
// carries. The keys are in BugHeader.cpp, in the order in which they are written.

// Where a crash comes from.
enum class BugSource : uint32_t { Unknown = 0, Internal = 1, External = 2 };
Reflection_DeclareEnum(BugSource);

// One file of a submission. An empty name means no file.
struct Attachment {
    std::string file; // relative to the submission folder, without the ".gz" that packaging adds
    std::string md5;  // of the file as the package stores it; filled in by the packager
};
Reflection_DeclareType(Attachment);

struct Catalog {
    Attachment dump;
    Attachment log;
    std::vector<Attachment> attachments; // in the order of packaging

    // The files in the order in which a package holds them: the log comes before the dump, although
    // the header lists them the other way round. Records without a file are left out. Points into the
    // catalog.
    std::vector<const Attachment*> FilesInPackageOrder() const;

    // The text before the last "_Minidump.dmp", or else the last ".dmp", of the dump's name. Without a dump,
    // of the first attachment whose name has such an ending. Empty if there is none.
    std::string DeriveInstanceKey() const;
};
Reflection_DeclareType(Catalog);

struct Exception {
    std::string message;
    std::string stackTrace;
};
Reflection_DeclareType(Exception);

// One loaded module, by the fields of a debug-symbol lookup.
struct ModuleInfo {
    std::string file;
    uint64_t baseAddr = 0;
    uint64_t size = 0; // bytes
    uint32_t guid1 = 0;
    uint16_t guid2 = 0;
    uint16_t guid3 = 0;
    std::vector<uint8_t> guid4; // the last eight bytes
    uint32_t age = 0;
    std::string pdbPath;
};
Reflection_DeclareType(ModuleInfo);

struct SessionInfo {
    uint64_t hash = 0;
    int64_t time = 0;
};
Reflection_DeclareType(SessionInfo);

struct VersionInfo {
    uint32_t major = 0;
    uint32_t minor = 0;
    uint32_t rev = 0;
    uint32_t build = 0;
};
Reflection_DeclareType(VersionInfo);

struct BugHeader {
    uint32_t headerVersion = 0;
    std::string host;
    std::string time;
    std::string application;
    BugSource source = BugSource::Unknown;
    std::string project;
    std::string submissionType;
    int32_t line = 0;
    std::string file;
    std::string instanceKey;
    std::string key;
    Catalog catalog;
    Exception exception;
    int32_t stackFrameStart = 0;
    std::vector<uint64_t> callstack; // return addresses, innermost first
    int32_t stackFrameEnd = 0;
    SessionInfo session;
    std::vector<ModuleInfo> moduleInfo;
    VersionInfo version;
    uint32_t changelist = 0;
};
Reflection_DeclareType(BugHeader);

// The header's file, in a submission folder and in a work folder.
namespace HeaderFile {

inline constexpr char Name[] = "header.json";

// Reads the header from the file's text. NoHeader if the text is invalid; "Out of memory" says nothing about
// the text. After a failure the header may be partly filled. problem, if given, then says where and why, such
// as: "Changelist": expected uint32. It stays as it is if there is no memory for that.
inline constexpr char NoHeader[] = "Failed to parse json header data in dump folder!";
ResultCode Parse(std::string_view text, BugHeader& header, JsonProblem* problem = nullptr);

// Compact JSON, in the order of the declaration; replaces an existing header.
ResultCode Write(const std::string& folder, const BugHeader& header);

} // namespace HeaderFile
