#include "Libs/Tarnel/Platform/src/Windows/Platform_DialogTemplate.h"

#include <algorithm>
#include <cstring>

#include <windows.h>

#include "Libs/Tarnel/Platform/src/Common/Platform_Assert.h"

namespace Platform {
namespace {

constexpr int TextLimit = 4097; // this many characters, with the terminator, are too many
constexpr uint16_t ButtonAtom = 0x0080;
constexpr uint16_t EditAtom = 0x0081;

struct WideText {
    wchar_t characters[TextLimit - 1]; // terminated
    std::size_t length;                // with the terminator
};

void Widen(const char* text, WideText& wide) {
    const char* source = text ? text : "";
    const int length = MultiByteToWideChar(CP_ACP, 0, source, -1, nullptr, 0);
    PLATFORM_ASSERT_MESSAGE(length < TextLimit, "Message in dialog is too long");
    if (length > 0 && length < TextLimit) {
        MultiByteToWideChar(CP_ACP, 0, source, -1, wide.characters, length);
        wide.length = static_cast<std::size_t>(length);
    } else {
        wide.characters[0] = 0; // without a terminator Windows would read on
        wide.length = 1;
    }
}

} // namespace

void DialogTemplate::Begin(const char* title, uint32_t style, DialogArea area, const char* fontFace,
                           uint16_t pointSize) {
    static_assert(sizeof(DLGTEMPLATE) == HeaderSize);
    CutBackTo(HeaderSize);
    m_itemCount = 0;
    SetHeader(offsetof(DLGTEMPLATE, style), style & ~DWORD{DS_SETFONT});
    SetHeader(offsetof(DLGTEMPLATE, cdit), m_itemCount);
    SetHeader(offsetof(DLGTEMPLATE, x), area);

    constexpr uint16_t NoMenu = 0;
    constexpr uint16_t StandardClass = 0;
    const bool isWhole = Append(NoMenu, StandardClass) && AppendText(title);
    if (!isWhole || !fontFace) {
        return;
    }
    // The style may promise a font only if one follows.
    const std::size_t beforeFont = m_usedBufferLength;
    if (Append(pointSize) && AppendText(fontFace)) {
        SetHeader(offsetof(DLGTEMPLATE, style), style | DWORD{DS_SETFONT});
    } else {
        CutBackTo(beforeFont);
    }
}

void DialogTemplate::AddControl(uint16_t classAtom, const char* text, uint32_t style, uint32_t extendedStyle,
                                DialogArea area, uint16_t id) {
    constexpr uint16_t AtomFollows = 0xFFFF;
    constexpr uint16_t NoCreationData = 0;
    const std::size_t before = m_usedBufferLength;
    m_usedBufferLength = (m_usedBufferLength + 3) & ~std::size_t{3};
    if (Append(style, extendedStyle, area, id, AtomFollows, classAtom) && AppendText(text) &&
        Append(NoCreationData)) {
        SetHeader(offsetof(DLGTEMPLATE, cdit), ++m_itemCount);
    } else {
        CutBackTo(before);
    }
}

void DialogTemplate::AddButton(const char* text, uint32_t style, uint32_t extendedStyle, DialogArea area,
                               uint16_t id) {
    AddControl(ButtonAtom, text, style, extendedStyle, area, id);
}

void DialogTemplate::AddEdit(const char* text, uint32_t style, uint32_t extendedStyle, DialogArea area,
                             uint16_t id) {
    AddControl(EditAtom, text, style, extendedStyle, area, id);
}

template <class Value>
void DialogTemplate::SetHeader(std::size_t offset, Value value) {
    std::memcpy(m_buffer.data() + offset, &value, sizeof(value));
}

template <class... Values>
bool DialogTemplate::Append(Values... values) {
    return (AppendBytes(&values, sizeof(values)) && ...);
}

bool DialogTemplate::AppendText(const char* text) {
    WideText wide;
    Widen(text, wide);
    return AppendBytes(wide.characters, wide.length * sizeof(wchar_t));
}

bool DialogTemplate::AppendBytes(const void* bytes, std::size_t length) {
    const bool fits = length + m_usedBufferLength < Capacity;
    PLATFORM_ASSERT_TEXT_MESSAGE(fits, "length + usedBufferLength < totalBufferLength",
                                 "Your dialog has taken more than 16k of memory. Something catastrophic has "
                                 "gone wrong.");
    if (fits) {
        std::memcpy(m_buffer.data() + m_usedBufferLength, bytes, length);
        m_usedBufferLength += length;
    }
    return fits;
}

// Zeroes what it cuts off, because the padding between items must be zero.
void DialogTemplate::CutBackTo(std::size_t length) {
    const std::size_t end = std::min(m_usedBufferLength, Capacity);
    if (length < end) {
        std::memset(m_buffer.data() + length, 0, end - length);
    }
    m_usedBufferLength = length;
}

} // namespace Platform
