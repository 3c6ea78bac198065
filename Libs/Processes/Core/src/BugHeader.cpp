#include "Libs/Processes/Core/src/BugHeader.h"

#include <exception>
#include <optional>

#include "Libs/Processes/Core/src/FolderPath.h"
#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_Serializer.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_ByteSource.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_FileBytes.h"

Reflection_DefineEnum(BugSource, Reflection_Enumerator(BugSource::Unknown, "UNKNOWN"),
                      Reflection_Enumerator(BugSource::Internal, "INTERNAL"),
                      Reflection_Enumerator(BugSource::External, "EXTERNAL"));

Reflection_DefineType(Attachment, Reflection_Field(file, "File"), Reflection_Field(md5, "MD5"));

Reflection_DefineType(Catalog, Reflection_Field(dump, "Dump", Reflection::OptionalAttribute()),
                      Reflection_Field(log, "Log", Reflection::OptionalAttribute()),
                      Reflection_Field(attachments, "Attachments"));

Reflection_DefineType(Exception, Reflection_Field(message, "Message"),
                      Reflection_Field(stackTrace, "StackTrace"));

Reflection_DefineType(ModuleInfo, Reflection_Field(file, "file"), Reflection_Field(baseAddr, "baseAddr"),
                      Reflection_Field(size, "size"), Reflection_Field(guid1, "guid1"),
                      Reflection_Field(guid2, "guid2"), Reflection_Field(guid3, "guid3"),
                      Reflection_Field(guid4, "guid4"), Reflection_Field(age, "age"),
                      Reflection_Field(pdbPath, "pdbPath"));

Reflection_DefineType(SessionInfo, Reflection_Field(hash, "Hash"), Reflection_Field(time, "Time"));

Reflection_DefineType(VersionInfo, Reflection_Field(major, "Major"), Reflection_Field(minor, "Minor"),
                      Reflection_Field(rev, "Rev"), Reflection_Field(build, "Build"));

Reflection_DefineType(BugHeader,
                      Reflection_Field(headerVersion, "HeaderVersion", Reflection::OptionalAttribute()),
                      Reflection_Field(host, "Host"), Reflection_Field(time, "Time"),
                      Reflection_Field(application, "Application"),
                      Reflection_Field(source, "Source", Reflection::OptionalAttribute()),
                      Reflection_Field(project, "Project", Reflection::OptionalAttribute()),
                      Reflection_Field(submissionType, "SubmissionType"),
                      Reflection_Field(line, "Line", Reflection::OptionalAttribute()),
                      Reflection_Field(file, "File", Reflection::OptionalAttribute()),
                      Reflection_Field(instanceKey, "InstanceKey", Reflection::OptionalAttribute()),
                      Reflection_Field(key, "Key", Reflection::OptionalAttribute()),
                      Reflection_Field(catalog, "Catalog"), Reflection_Field(exception, "Exception"),
                      Reflection_Field(stackFrameStart, "StackFrameStart", Reflection::OptionalAttribute()),
                      Reflection_Field(stackFrameEnd, "StackFrameEnd", Reflection::OptionalAttribute()),
                      Reflection_Field(callstack, "Callstack"),
                      Reflection_Field(session, "Session", Reflection::OptionalAttribute()),
                      Reflection_Field(moduleInfo, "ModuleInfo"),
                      Reflection_Field(version, "Version", Reflection::OptionalAttribute()),
                      Reflection_Field(changelist, "Changelist"));

namespace {

std::optional<std::string_view> InstanceKeyOfFile(std::string_view file) {
    std::size_t end = file.rfind("_Minidump.dmp");
    if (end == std::string_view::npos) {
        end = file.rfind(".dmp");
    }
    if (end == std::string_view::npos) {
        return std::nullopt;
    }
    return file.substr(0, end);
}

} // namespace

std::vector<const Attachment*> Catalog::FilesInPackageOrder() const {
    std::vector<const Attachment*> files;
    const auto add = [&](const Attachment& attachment) {
        if (!attachment.file.empty()) {
            files.push_back(&attachment);
        }
    };
    add(log);
    add(dump);
    for (const Attachment& attachment : attachments) {
        add(attachment);
    }
    return files;
}

std::string Catalog::DeriveInstanceKey() const {
    if (!dump.file.empty()) {
        return std::string(InstanceKeyOfFile(dump.file).value_or(""));
    }
    for (const Attachment& attachment : attachments) {
        if (const auto key = InstanceKeyOfFile(attachment.file)) {
            return std::string(*key);
        }
    }
    return {};
}

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

ResultCode Parse(std::string_view text, BugHeader& header, JsonProblem* problem) {
    JsonDocument document;
    JsonSerialization::Context context;
    const auto parsed = JsonSerialization::ParseText(text, document);
    const char* failure = parsed.error;
    if (!failure) {
        const ResultCode result = JsonSerialization::GetSerializer().Read(&Reflection::TypeOf<BugHeader>,
                                                                          &header, document, context);
        if (result) {
            return Platform::Success;
        }
        failure = result.Text();
    }
    if (std::string_view(failure) == "Out of memory") {
        return "Out of memory";
    }
    if (problem) {
        try {
            *problem = parsed ? ReadProblem(text, document, context.Failure()) : ParseProblem(text, parsed);
        } catch (const std::exception&) { // what becomes of the header does not depend on it
        }
    }
    return NoHeader;
}

ResultCode Write(const std::string& folder, const BugHeader& header) {
    std::string text;
    RETURN_IF_FAILED(ToText(header, text));
    switch (Platform::WriteWholeFile(FolderPath::Join(folder, Name), Platform::BytesOf(text))) {
    case Platform::WriteOutcome::OpenFailed:
        return "Failed to open json header for writing";
    case Platform::WriteOutcome::WriteFailed:
        return "Failed to write to json header in packaged folder";
    case Platform::WriteOutcome::Done:
        break;
    }
    return Platform::Success;
}

} // namespace HeaderFile
