#include "Libs/Tarnel/Platform/src/Common/Platform_Path.h"

#include <algorithm>
#include <exception>
#include <type_traits>
#include <utility>

#include "Libs/Tarnel/Platform/src/Common/Platform_StringCommon.h"

namespace Platform {
namespace {

constexpr SystemText::value_type OtherSeparator = PathSeparator == '/' ? '\\' : '/';

SystemError ErrorOf(ConvertStringResult result) {
    return result == ConvertString_Done ? NoError : result == ConvertString_UnknownError ? NoMemory : NotText;
}

// Where both have one form the text is only checked.
template <class From, class To>
SystemError ConvertText(std::basic_string_view<From> from, std::basic_string<To>& to) noexcept try {
    if constexpr (!std::is_same_v<From, To>) {
        return ErrorOf(ConvertString(from, to));
    } else {
        std::basic_string<std::conditional_t<std::is_same_v<From, char>, wchar_t, char>> other;
        const SystemError error = ErrorOf(ConvertString(from, other));
        to = error == NoError ? from : std::basic_string_view<From>();
        return error;
    }
} catch (const std::exception&) {
    return NoMemory;
}

} // namespace

SystemError ToSystemText(std::string_view utf8, SystemText& text) noexcept {
    return ConvertText(utf8, text);
}

SystemError ToUtf8(const SystemText& text, std::string& utf8) noexcept {
    return ConvertText(std::basic_string_view<SystemText::value_type>(text), utf8);
}

SystemPath::SystemPath(std::string_view utf8) noexcept {
    SystemText text;
    m_error = ToSystemText(utf8, text);
    Set(std::move(text));
}

SystemPath::SystemPath(std::wstring_view wide) noexcept {
    SystemText text;
    m_error = ConvertText(wide, text);
    Set(std::move(text));
}

void SystemPath::Set(SystemText text) try {
    if (text.find(SystemText::value_type{0}) != SystemText::npos) {
        m_error = NotText; // the system would stop reading at the NUL
    }
    if (m_error == NoError && !text.empty()) {
        m_rootLength = ResolvePath(text);
        m_text = std::move(text);
    }
} catch (const std::exception&) {
    m_error = NoMemory;
}

// A copy, changed. An empty path stays empty.
template <class Change>
SystemPath SystemPath::Changed(Change change) const noexcept {
    SystemPath path;
    path.m_error = m_error;
    if (m_text.empty()) {
        return path;
    }
    try {
        SystemText text = m_text;
        path.m_error = change(text);
        if (path.m_error == NoError) {
            path.m_text = std::move(text);
            path.m_rootLength = m_rootLength;
        }
    } catch (const std::exception&) {
        path.m_error = NoMemory;
    }
    return path;
}

SystemPath SystemPath::Below(const SystemText& name) const noexcept {
    return Changed([&](SystemText& text) {
        if (text.back() != PathSeparator) {
            text += PathSeparator;
        }
        text += name;
        return NoError;
    });
}

SystemPath SystemPath::Within(std::string_view relative) const noexcept {
    return Changed([&](SystemText& text) {
        SystemText names;
        SystemError error = ToSystemText(relative, names);
        if (names.find(SystemText::value_type{0}) != SystemText::npos) {
            error = NotText;
        }
        std::ranges::replace(names, OtherSeparator, PathSeparator);
        AppendNames(text, names);
        return error;
    });
}

SystemPath SystemPath::Parent() const noexcept {
    return Changed([&](SystemText& text) {
        const std::size_t last = text.rfind(PathSeparator);
        if (last == SystemText::npos) {
            text.assign(1, SystemText::value_type{'.'}); // of a single name
        } else {
            text.resize(std::max(last, m_rootLength));
        }
        return NoError;
    });
}

void AppendNames(SystemText& folder, std::basic_string_view<SystemText::value_type> relative) {
    const std::size_t top = folder.size();
    for (std::size_t start = 0; start < relative.size();) {
        const std::size_t end = std::min(relative.find(PathSeparator, start), relative.size());
        const auto name = relative.substr(start, end - start);
        start = end + 1;
        const bool isDot = !name.empty() && name.find_first_not_of(SystemText::value_type{'.'}) == name.npos;
        if (isDot && name.size() == 2) {
            folder.resize(folder.size() == top ? top : std::max(top, folder.rfind(PathSeparator)));
        } else if (!name.empty() && !(isDot && name.size() == 1)) {
            if (folder.back() != PathSeparator) {
                folder += PathSeparator;
            }
            folder += name;
        }
    }
}

} // namespace Platform
