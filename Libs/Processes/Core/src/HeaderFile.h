#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "Libs/Processes/Core/src/BugHeader.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_ResultCode.h"

// header.json of a submission folder or of a work folder. The folder's trailing separator may be missing.
namespace HeaderFile {

inline constexpr char Name[] = "header.json";

// The header's records from the text of the file. After a failure the header may be filled in part.
ResultCode Parse(std::string_view text, BugHeader& header);

// The same from the file. After a failure the header may be filled in part. Copes with a file that its writer
// still holds open.
ResultCode Read(const std::string& folder, BugHeader& header);

// Compact JSON, in the order of the declaration; replaces an existing header.
ResultCode Write(const std::string& folder, const BugHeader& header);

// The file's bytes as they are.
ResultCode ReadRaw(const std::string& folder, std::vector<uint8_t>& bytes);

} // namespace HeaderFile
