#include "Libs/Processes/Core/src/InstanceKey.h"

#include "Libs/Processes/Core/src/BugHeader.h"

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

std::string DeriveInstanceKey(const Catalog& catalog) {
    if (!catalog.dump.file.empty()) {
        return std::string(InstanceKeyOfFile(catalog.dump.file).value_or(""));
    }
    for (const Attachment& attachment : catalog.attachments) {
        if (const auto key = InstanceKeyOfFile(attachment.file)) {
            return std::string(*key);
        }
    }
    return {};
}
