#include "Libs/Tarnel/Platform/src/Windows/Platform_DialogTemplate.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Libs/Tarnel/Platform/src/Common/Platform_Assert.h"
#include "tests/support/AssertCapture.h"

using Platform::DialogTemplate;

namespace {

constexpr char TooLong[] = "length < TextLimit|Message in dialog is too long";
constexpr char TooMuch[] =
    "length + usedBufferLength < totalBufferLength|"
    "Your dialog has taken more than 16k of memory. Something catastrophic has gone wrong.";

std::vector<int> BytesOf(const DialogTemplate& dialog) {
    std::vector<int> bytes;
    for (const std::byte value : dialog.Bytes()) {
        bytes.push_back(std::to_integer<int>(value));
    }
    return bytes;
}

int ItemCount(const DialogTemplate& dialog) {
    return BytesOf(dialog)[8] | BytesOf(dialog)[9] << 8;
}

bool HasFont(const DialogTemplate& dialog) {
    return BytesOf(dialog)[0] & 0x40; // DS_SETFONT
}

void BeginSmall(DialogTemplate& dialog) {
    dialog.Begin("", 0, {0, 0, 10, 10}, nullptr, 0);
}

} // namespace

TEST(DialogTemplate, LaysOutWhatWindowsReads) {
    DialogTemplate dialog;
    dialog.Begin("T\xC3\xBC", 0x80C80880, {1, 2, 0x0304, 5}, "Ab", 8);
    dialog.AddButton("&Now", 0x50010000, 0x20, {6, 7, 64, 14}, 1004);
    dialog.AddEdit("", 0x103008C4, 0x00020000, {7, 7, 386, 211}, 1005);
    const std::vector<int> expected = {
        0xC0, 0x08, 0xC8, 0x80, 0,    0, 0,    0,             // style with the font's bit, extended style
        2,    0,    1,    0,    2,    0, 4,    3, 5,    0,    // items, x, y, cx, cy
        0,    0,    0,    0,    'T',  0, 0xFC, 0, 0,    0,    // menu, class, title
        8,    0,    'A',  0,    'b',  0, 0,    0,             // points, face; 36 bytes
        0,    0,    1,    0x50, 0x20, 0, 0,    0,             // style, extended style
        6,    0,    7,    0,    64,   0, 14,   0, 0xEC, 0x03, // area, id
        0xFF, 0xFF, 0x80, 0,    '&',  0, 'N',  0, 'o',  0,    'w', 0, // class, text
        0,    0,    0,    0,    0,    0,                              // its end, no data, 2 bytes to align
        0xC4, 0x08, 0x30, 0x10, 0,    0, 2,    0,                     //
        7,    0,    7,    0,    0x82, 1, 0xD3, 0, 0xED, 3,            // area, id
        0xFF, 0xFF, 0x81, 0,    0,    0, 0,    0,                     // class, empty text, no data
    };
    EXPECT_EQ(expected, BytesOf(dialog));
    EXPECT_EQ(0u, reinterpret_cast<std::uintptr_t>(dialog.Template()) % 4);
}

TEST(DialogTemplate, WithoutAFaceThereIsNoFont) {
    DialogTemplate dialog;
    dialog.Begin("T", 0x80C808C8, {0, 0, 1, 1}, nullptr, 8);
    EXPECT_FALSE(HasFont(dialog)) << "the style would promise a font that is missing";
    EXPECT_EQ(18u + 4 + 4, dialog.Bytes().size());
}

TEST(DialogTemplate, ControlsStartAtMultiplesOfFour) {
    for (const char* title : {"", "a", "ab", "abc"}) {
        DialogTemplate dialog;
        dialog.Begin(title, 0, {0, 0, 1, 1}, nullptr, 0);
        const std::size_t start = (dialog.Bytes().size() + 3) / 4 * 4;
        dialog.AddButton("", 0x11223344, 0, {}, 1);
        ASSERT_LT(start + 4, dialog.Bytes().size());
        EXPECT_EQ(0x44, BytesOf(dialog)[start]) << title;
        EXPECT_EQ(0x11, BytesOf(dialog)[start + 3]) << title;
    }
}

TEST(DialogTemplate, TextsOf4096CharactersAndMoreCountAsEmpty) {
    std::string wide;
    for (int i = 0; i < 4095; ++i) {
        wide += "\xE3\x82\xAF"; // one wide character
    }
    const struct {
        std::string text;
        std::size_t length; // wide, with the terminator
        bool isKept;
    } rows[] = {
        {std::string(4095, 'x'), 4096, true},
        {wide, 4096, true},
        {std::string(4096, 'x'), 1, false},
        {std::string(5000, 'x'), 1, false},
    };
    for (const auto& row : rows) {
        const AssertCapture capture;
        DialogTemplate dialog;
        dialog.Begin(row.text.c_str(), 0, {0, 0, 1, 1}, "F", 9);
        EXPECT_EQ(18 + 4 + row.length * 2 + 2 + 4, dialog.Bytes().size());
        EXPECT_EQ(9, BytesOf(dialog)[22 + row.length * 2]) << "the font stands behind the title";
        EXPECT_EQ(row.isKept ? std::vector<std::string>{} : std::vector<std::string>{TooLong},
                  capture.Texts());
    }
}

TEST(DialogTemplate, AControlThatDoesNotFitIsLeftOutWhole) {
    const AssertCapture capture;
    DialogTemplate dialog;
    BeginSmall(dialog); // 24 bytes
    dialog.AddButton(std::string(4000, 'a').c_str(), 0, 0, {}, 1);
    dialog.AddButton(std::string(4000, 'b').c_str(), 0, 0, {}, 2);
    EXPECT_TRUE(capture.Failures().empty());
    const std::vector<int> before = BytesOf(dialog);              // 16078, the next one starts at 16080
    dialog.AddButton(std::string(139, 'c').c_str(), 0, 0, {}, 3); // would end at 16384
    EXPECT_EQ(std::vector<std::string>{TooMuch}, capture.Texts());
    EXPECT_EQ(before, BytesOf(dialog));
    EXPECT_EQ(2, ItemCount(dialog));
    const auto* bytes = static_cast<const char*>(dialog.Template());
    EXPECT_EQ(
        DialogTemplate::Capacity - before.size(),
        static_cast<std::size_t>(std::count(bytes + before.size(), bytes + DialogTemplate::Capacity, 0)));

    dialog.AddButton(std::string(138, 'c').c_str(), 0, 0, {}, 4);
    EXPECT_EQ(3, ItemCount(dialog)) << "a smaller one fits, up to the last two bytes";
    EXPECT_EQ(1u, capture.Failures().size());
}

TEST(DialogTemplate, AFontThatDoesNotFitIsNotPromised) {
    const AssertCapture capture;
    DialogTemplate dialog;
    const std::string text(4095, 'x');
    dialog.Begin(text.c_str(), 0, {0, 0, 1, 1}, text.c_str(), 8); // 18 + 4 + 8192 + 2 + 8192
    EXPECT_EQ(std::vector<std::string>{TooMuch}, capture.Texts());
    EXPECT_FALSE(HasFont(dialog));
    EXPECT_EQ(18u + 4 + 8192, dialog.Bytes().size());
}
