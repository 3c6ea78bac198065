#include "Libs/Processes/Core/src/BugHeader.h"

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
