#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace Platform {

// In dialog units.
struct DialogArea {
    uint16_t x;
    uint16_t y;
    uint16_t width;
    uint16_t height;
};

// Builds in memory what a resource script would compile to: a DLGTEMPLATE with its DLGITEMTEMPLATE records,
// for code that shows a dialog without resources. First Begin, then the controls in tab order, then Template.
// Belongs to one thread; takes 16 KiB of stack.
//
// Texts are narrow, in the process's code page, and at most 4095 characters long. A longer text fails a check
// and counts as empty. A control that does not fit fails a check too and is left out whole. So nothing is
// written outside the buffer, and Windows can read the template after every call.
class DialogTemplate {
public:
    static constexpr std::size_t Capacity = 16384;

    // Without a face the dialog has the system font. Starts again if called again.
    void Begin(const char* title, uint32_t style, DialogArea area, const char* fontFace, uint16_t pointSize);

    // classAtom names one of the system's window classes, such as 0x0080 for buttons.
    void AddControl(uint16_t classAtom, const char* text, uint32_t style, uint32_t extendedStyle,
                    DialogArea area, uint16_t id);
    void AddButton(const char* text, uint32_t style, uint32_t extendedStyle, DialogArea area, uint16_t id);
    void AddEdit(const char* text, uint32_t style, uint32_t extendedStyle, DialogArea area, uint16_t id);

    // For DialogBoxIndirectParam; lives as long as the builder.
    const void* Template() const { return m_buffer.data(); }

private:
    static constexpr std::size_t HeaderSize = 18;

    template <class Value>
    void SetHeader(std::size_t offset, Value value);
    template <class... Values>
    bool Append(Values... values);
    bool AppendText(const char* text);
    bool AppendBytes(const void* bytes, std::size_t length);
    void CutBackTo(std::size_t length);

    alignas(4) std::array<std::byte, Capacity> m_buffer = {};
    std::size_t m_usedBufferLength = HeaderSize;
    uint16_t m_itemCount = 0;
};

} // namespace Platform
