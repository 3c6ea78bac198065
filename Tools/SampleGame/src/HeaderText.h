#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "Tools/SampleGame/src/CrashContext.h"

namespace SampleGame {

// What header.json says beside the crash itself. File names are relative to the submission folder.
struct HeaderFields {
    std::string host;
    std::string time; // UTC, "2026-11-21T19:00:00Z"
    uint64_t sessionHash = 0;
    int64_t sessionTime = 0; // seconds since 1970
    std::string dumpFile;
    std::string logFile;
    std::vector<std::string> attachments;
};

// The JSON text of header.json. The agent fills in the MD5 fields.
std::string HeaderText(const HeaderFields& fields, const CrashContext& crash);

} // namespace SampleGame
