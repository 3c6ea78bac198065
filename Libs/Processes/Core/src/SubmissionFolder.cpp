#include "Libs/Processes/Core/src/SubmissionFolder.h"

#include <algorithm>

#include "Libs/Processes/Core/src/AttachmentName.h"
#include "Libs/Processes/Core/src/PackageFormat.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_ByteSource.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_FileBytes.h"

namespace {

bool IsOfTheMachine(Platform::SystemError error) {
    return error != Platform::Folder::NotInside && error != Platform::NotText && !Platform::IsMissing(error);
}

} // namespace

bool SubmissionFault::Is(ResultCode result) {
    const char* const faults[] = {NoName,       NoHeaderFile, EmptyHeaderFile, HeaderFile::NoHeader,
                                  NoAttachment, NoFile,       EmptyFile,       TooLong};
    return std::ranges::find(faults, result.Text()) != std::end(faults);
}

Platform::SystemError SubmissionFolder::Open(const std::string& name, const char* ending,
                                             Platform::File& file) const {
    if (m_error != Platform::NoError) {
        return m_error;
    }
    return IsSafeAttachmentName(name) ? m_folder.OpenFile(name + ending, Platform::Patience::WhileHeld, file)
                                      : Platform::Folder::NotInside;
}

ResultCode SubmissionFolder::ReadHeader(BugHeader& header, JsonProblem& problem) const {
    Platform::File file;
    if (const Platform::SystemError error = Open(HeaderFile::Name, "", file); error != Platform::NoError) {
        return IsOfTheMachine(error) ? ResultCode("Failed to open json header data in dump folder!")
                                     : SubmissionFault::NoHeaderFile;
    }
    std::vector<uint8_t> bytes;
    switch (Platform::ReadWholeFile(file, bytes)) {
    case Platform::ReadOutcome::Done:
        break;
    case Platform::ReadOutcome::Empty:
        return SubmissionFault::EmptyHeaderFile;
    default:
        return "Failed to read json header data in dump folder!";
    }
    return HeaderFile::Parse(Platform::TextOf(bytes), header, &problem);
}

ResultCode SubmissionFolder::OpenFile(const std::string& name, const char* ending,
                                      Platform::File& file) const {
    const Platform::SystemError error = Open(name, ending, file);
    if (error == Platform::NoError) {
        return Platform::Success;
    }
    return IsOfTheMachine(error) ? ResultCode("Failed to open input file") : SubmissionFault::NoFile;
}

ResultCode SubmissionFolder::OpenAttachment(const std::string& name, FoundAttachment& found) const {
    RETURN_IF_FAILED(FindAttachment(name, found));
    if (found.file.GetSize() == 0) {
        return SubmissionFault::EmptyFile;
    }
    if (found.isCompressed && found.file.GetSize() > PackageFormat::MaxLength) {
        return SubmissionFault::TooLong;
    }
    return Platform::Success;
}

ResultCode SubmissionFolder::FindAttachment(const std::string& name, FoundAttachment& found) const {
    const ResultCode plain = OpenFile(name, "", found.file);
    found.isCompressed = LooksCompressed(name);
    if (plain || found.isCompressed || plain.Text() != SubmissionFault::NoFile) {
        return plain;
    }
    found.isCompressed = true;
    const ResultCode compressed = OpenFile(name, ".gz", found.file);
    return compressed.Text() == SubmissionFault::NoFile ? SubmissionFault::NoAttachment : compressed;
}
