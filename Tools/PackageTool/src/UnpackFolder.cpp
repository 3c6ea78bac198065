#include "Tools/PackageTool/src/UnpackFolder.h"

#include <algorithm>
#include <utility>

#include "Libs/Framework/Core/src/PlatformHelpers.h"
#include "Libs/Processes/Core/src/AttachmentName.h"
#include "Libs/Processes/Core/src/FolderPath.h"
#include "Libs/Processes/Core/src/PathIdentity.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_RawFile.h"
#include "Libs/Tarnel/String/src/String_Ascii.h"
#include "Tools/PackageTool/src/TargetFolder.h"

namespace {

std::string Folded(std::string name) {
    std::transform(name.begin(), name.end(), name.begin(),
                   [](char c) { return c == '\\' ? '/' : String::LowerAscii(c); });
    return name;
}

// game.log and 2 give game~2.log.
std::string Numbered(const std::string& name, unsigned number) {
    const std::size_t fileStart = name.find_last_of("\\/") + 1; // npos + 1 is 0
    const std::size_t dot = name.find_last_of('.');
    const std::size_t end = dot == std::string::npos || dot <= fileStart ? name.size() : dot;
    return name.substr(0, end) + "~" + std::to_string(number) + name.substr(end);
}

bool WriteAll(Platform::RawFile& file, UnpackFolder::Piece bytes) {
    while (!bytes.empty()) {
        uint32_t written = 0;
        const auto wanted = static_cast<uint32_t>(std::min<std::size_t>(bytes.size(), 1 << 20));
        if (!file.Write(bytes.data(), wanted, written) || written == 0) {
            return false;
        }
        bytes = bytes.subspan(written);
    }
    return true;
}

} // namespace

std::string UnpackFolder::Write(const std::string& name, const Fill& fill, std::string& path) {
    path.clear();
    if (!IsSafeAttachmentName(name)) {
        return "The name is not safe";
    }
    const std::string freeName = FreeName(name);
    if (std::string reason = MakeWay(freeName); !reason.empty()) {
        return reason;
    }
    const std::string target = FolderPath::Join(m_folder, freeName);
    Platform::RawFile file;
    if (!file.CreateNew(target)) {
        return PlatformHelpers::PathExists(target) ? "There is already a file of that name"
                                                   : "Failed to create the file";
    }
    bool isWritten = true;
    const bool isFilled = fill([&](Piece piece) { return isWritten = WriteAll(file, piece); });
    isWritten = file.Close() && isWritten;
    if (isWritten && isFilled) {
        path = target;
        m_written.push_back(target);
        return {};
    }
    static_cast<void>(PlatformHelpers::RemoveFile(target)); // logs a failure
    return isWritten ? NotWhole : "Failed to write the file";
}

std::string UnpackFolder::FreeName(const std::string& name) {
    const auto [given, isNew] = m_given.emplace(Folded(name), 2);
    std::string candidate = name;
    for (bool isFree = isNew; !isFree; isFree = m_given.emplace(Folded(candidate), 2).second) {
        candidate = Numbered(name, given->second++);
    }
    return candidate;
}

// Makes the folders that the name asks for and removes what stands in its place, if it may.
std::string UnpackFolder::MakeWay(const std::string& name) {
    if (!EnsureTargetFolder(m_folder)) {
        return "Failed to create the folder";
    }
    for (std::size_t end = name.find_first_of("\\/"); end != std::string::npos;
         end = name.find_first_of("\\/", end + 1)) {
        const std::string folder = FolderPath::Join(m_folder, name.substr(0, end));
        if (PathIdentity::IsLink(folder)) {
            return "A link lies on the way";
        }
        PlatformHelpers::FileStatus status;
        const bool isThere = PlatformHelpers::PathExists(folder);
        if (isThere ? !PlatformHelpers::QueryFileStatus(folder, status) || !status.isFolder
                    : !PlatformHelpers::EnsureFolderExists(folder).Succeeded()) {
            return "Failed to create the folder";
        }
    }
    const std::string target = FolderPath::Join(m_folder, name);
    if (!PlatformHelpers::PathExists(target)) {
        return {};
    }
    if (!m_mayReplace || IsOurs(target)) {
        return "There is already a file of that name";
    }
    if (!PathIdentity::IsLink(target)) {
        PlatformHelpers::FileStatus status;
        if (!PlatformHelpers::QueryFileStatus(target, status) || status.isFolder) {
            return "There is already a folder of that name";
        }
        if (status.isReadOnly && !PlatformHelpers::MakeFileWritable(target)) {
            return "Failed to replace the file";
        }
    }
    return PlatformHelpers::RemoveFile(target) ? "" : "Failed to replace the file";
}

// What the system takes for one name, such as Ä.log and ä.log, must not replace each other. Asked only for a
// target that is there already; each file is looked at once.
bool UnpackFolder::IsOurs(const std::string& target) {
    for (const std::string& written : m_written) {
        m_identities.insert(PathIdentity::IdentityOf(written));
    }
    m_written.clear();
    const std::string identity = PathIdentity::IdentityOf(target);
    return !identity.empty() && m_identities.contains(identity);
}
