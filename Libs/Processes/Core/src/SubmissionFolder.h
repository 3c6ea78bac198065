#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "Libs/Processes/Core/src/BugHeader.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Folder.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_ResultCode.h"

// The failures that are the submission's own fault: it fails in the same way every time. Every other failure
// of packaging is one of the machine, which another run may not have: no space, no memory, a file that
// another program holds. Some have the same text, so it is the constant, not its text, that says which it is.
namespace SubmissionFault {

inline constexpr char NoName[] = "Failed to find submission folder name in folder path";
inline constexpr char NoHeaderFile[] = "Failed to open json header data in dump folder!";
inline constexpr char EmptyHeaderFile[] = "Invalid header of size 0 in dump folder!";
inline constexpr char NoAttachment[] = "Failed to find attachment on disk";
inline constexpr char NoFile[] = "Failed to open input file";
inline constexpr char EmptyFile[] = "Failed to read zero length input file!";
inline constexpr char TooLong[] = "Too long for a package, whose lengths end below 4 GiB";

bool Is(ResultCode result);

} // namespace SubmissionFault

// A submission or its work folder, opened once and asked for its files by the names that a header gives.
// Names and links are hostile: an unsafe name, a link, and a file that is reached through one are as good as
// missing, and it is the opened file that is judged, so that nothing can be exchanged in between. Opening
// waits about a second for a file that another program holds. One thread. Must be gone before the folder is
// deleted.
class SubmissionFolder {
public:
    // Never fails; a folder that does not open has no files.
    explicit SubmissionFolder(const std::string& path) : m_error(m_folder.Open(path)) {}

    // problem: see HeaderFile::Parse.
    ResultCode ReadHeader(BugHeader& header, JsonProblem& problem) const;

    // Opens the file of that name in the header, with ending (".gz" or "") added, for reading.
    // SubmissionFault::NoFile if it is missing.
    ResultCode OpenFile(const std::string& name, const char* ending, Platform::File& file) const;

    // Opens an attachment in the form that the folder has, and refuses one that no package takes.
    //   dump.dmp, plain in the folder        to be compressed
    //   game.log, there only as game.log.gz  compressed
    //   data.tgz                             compressed
    struct FoundAttachment {
        Platform::File file;
        bool isCompressed = false;
    };
    ResultCode OpenAttachment(const std::string& name, FoundAttachment& found) const;

private:
    ResultCode FindAttachment(const std::string& name, FoundAttachment& found) const;
    Platform::SystemError Open(const std::string& name, const char* ending, Platform::File& file) const;

    Platform::Folder m_folder;
    Platform::SystemError m_error;
};
