#include "Libs/Processes/Core/src/HeaderFile.h"

#include <span>

#include "Libs/Processes/Core/src/FolderPath.h"
#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_Serializer.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_FileBytes.h"

namespace HeaderFile {

namespace {

ResultCode ToText(const BugHeader& header, std::string& text) {
    JsonDocument document;
    if (!JsonSerialization::WriteRecord(header, document).Succeeded() ||
        !JsonSerialization::WriteText(document, text).Succeeded()) {
        return "Failed to write json header to buffer";
    }
    return Platform::Success;
}

} // namespace

ResultCode Parse(std::string_view text, BugHeader& header) {
    JsonDocument document;
    if (!JsonSerialization::ParseText(text, document) ||
        !JsonSerialization::ReadRecord(document, header).Succeeded()) {
        return "Failed to parse json header data in dump folder!";
    }
    return Platform::Success;
}

ResultCode Read(const std::string& folder, BugHeader& header) {
    std::vector<uint8_t> bytes;
    switch (Platform::ReadWholeFile(FolderPath::Join(folder, Name), bytes)) {
    case Platform::ReadOutcome::OpenFailed:
        return "Failed to open json header data in dump folder!";
    case Platform::ReadOutcome::Empty:
        return "Invalid header of size 0 in dump folder!";
    case Platform::ReadOutcome::ReadFailed:
        return "Failed to read json header data in dump folder!";
    case Platform::ReadOutcome::Done:
        break;
    }
    return Parse({reinterpret_cast<const char*>(bytes.data()), bytes.size()}, header);
}

ResultCode Write(const std::string& folder, const BugHeader& header) {
    std::string text;
    if (const ResultCode result = ToText(header, text); !result) {
        return result;
    }
    const std::span bytes(reinterpret_cast<const uint8_t*>(text.data()), text.size());
    switch (Platform::WriteWholeFile(FolderPath::Join(folder, Name), bytes)) {
    case Platform::WriteOutcome::OpenFailed:
        return "Failed to open json header for writing";
    case Platform::WriteOutcome::WriteFailed:
        return "Failed to write to json header in packaged folder";
    case Platform::WriteOutcome::Done:
        break;
    }
    return Platform::Success;
}

ResultCode ReadRaw(const std::string& folder, std::vector<uint8_t>& bytes) {
    return Platform::ReadFileBytes(FolderPath::Join(folder, Name), bytes);
}

} // namespace HeaderFile
