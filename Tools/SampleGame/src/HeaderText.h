#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "Tools/SampleGame/src/CrashContext.h"

namespace SampleGame {

// What header.json says beyond the crash itself. File names are relative to the submission folder.
struct HeaderFields {
    std::string host;
    std::string time;
    uint64_t sessionHash = 0;
    int64_t sessionTime = 0;
    std::string dumpFile;
    std::string logFile;
    std::vector<std::string> attachments;
};

// The JSON text of header.json. The MD5 fields stay empty: the agent fills them in.
std::string HeaderText(const HeaderFields& fields, const CrashContext& crash);

} // namespace SampleGame
