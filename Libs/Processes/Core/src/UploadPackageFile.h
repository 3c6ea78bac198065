#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "Libs/Tarnel/Platform/src/Common/Platform_ResultCode.h"

// C:\packaged\1 and C:\packaged\1\ both give C:\packaged\1\submission.pkg. Only a backslash counts as an end.
std::string UploadPackagePath(const std::string& folder, const std::string& submissionFileName);

// The whole package as opaque bytes. Fails while somebody still holds the file open for writing, and for a
// file of length 0 or one that does not fit in memory; package is empty then.
ResultCode LoadUploadPackage(const std::string& path, std::vector<uint8_t>& package);
