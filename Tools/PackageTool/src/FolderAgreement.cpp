#include "Tools/PackageTool/src/FolderAgreement.h"

#include <vector>

#include "Libs/Processes/Core/src/FolderPath.h"
#include "Libs/Tarnel/String/src/String_Ascii.h"

namespace FolderAgreement {

std::string Comparable(std::string_view folder, Base base) {
    const bool isRelative = FolderPath::IsRelative(folder);
    std::vector<std::string> parts;
    while (!folder.empty()) {
        const std::size_t end = folder.find_first_of("\\/");
        std::string part(folder.substr(0, end));
        folder.remove_prefix(end == std::string_view::npos ? folder.size() : end + 1);
        if (part == ".." && !parts.empty() && parts.back() != "..") {
            parts.pop_back();
        } else if (!part.empty() && part != ".") {
            parts.push_back(std::move(part));
        }
    }
    std::string text;
    if (isRelative) {
        text = base == Base::ApplicationFolder ? "<application folder>" : "<current folder>";
    }
    for (const std::string& part : parts) {
        text += text.empty() ? "" : "/";
        for (const char c : part) {
            text += String::LowerAscii(c);
        }
    }
    return text;
}

std::string WithDefault(const std::string& folder, const char* defaultName) {
    return folder.empty() ? Comparable(defaultName, Base::ApplicationFolder)
                          : Comparable(folder, Base::CurrentFolder);
}

} // namespace FolderAgreement
