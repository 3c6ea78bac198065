#include "Libs/Tarnel/String/src/String_Global.h"

#include <cstdarg>
#include <memory>
#include <new>

#include "Libs/Tarnel/Platform/src/Common/Platform_Assert.h"
#include "Libs/Tarnel/String/src/String_PlatformFunctions.h"
#include "Libs/Tarnel/Types/src/Types_FNV1a.h"

namespace String {

GlobalID GlobalID::OfText(std::string_view text) {
    return GlobalID(Types::FNV1a(text));
}

GlobalID::GlobalID(const char* text) : GlobalID(Global(text).Id()) {}

Global::Global(std::string_view text)
    : m_node(GetGlobalPalette().Intern(text.data(), static_cast<uint32_t>(text.size()))) {}

Global::Global(const char* text) {
    if (text) {
        *this = Global(std::string_view(text));
    }
}

Global FormatGlobal(const char* szFormat, ...) {
    char onStack[1024];
    va_list arguments = {};
    va_list again = {};
    va_start(arguments, szFormat);
    va_copy(again, arguments);
    const int needed = FormatList(onStack, sizeof(onStack), szFormat, arguments);
    Global global;
    if (needed >= 0) {
        const auto length = static_cast<std::size_t>(needed);
        if (length < sizeof(onStack)) {
            global = Global(std::string_view(onStack, length));
        } else {
            const std::unique_ptr<char[]> onHeap(new (std::nothrow) char[length + 1]);
            PLATFORM_ASSERT_MESSAGE(onHeap != nullptr, "Allocation Failed");
            if (onHeap) {
                FormatList(onHeap.get(), length + 1, szFormat, again);
                global = Global(std::string_view(onHeap.get(), length));
            }
        }
    }
    va_end(again);
    va_end(arguments);
    return global;
}

} // namespace String
