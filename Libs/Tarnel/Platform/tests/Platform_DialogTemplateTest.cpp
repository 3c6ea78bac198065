#include "Libs/Tarnel/Platform/src/Windows/Platform_DialogTemplate.h"

#include <string>
#include <vector>

#include <windows.h>

#include <gtest/gtest.h>

#include "tests/support/AssertCapture.h"

using Platform::DialogTemplate;

namespace {

const DLGTEMPLATE& HeaderOf(const DialogTemplate& dialog) {
    return *static_cast<const DLGTEMPLATE*>(dialog.Template());
}

TEST(DialogTemplate, WhatDoesNotFitIsLeftOutWhole) {
    const AssertCapture capture;
    DialogTemplate dialog;
    dialog.Begin(std::string(4096, 'x').c_str(), DS_SETFONT, {0, 0, 10, 10}, nullptr, 0); // 24 bytes
    EXPECT_EQ(capture.Texts(), std::vector<std::string>{"length < TextLimit|Message in dialog is too long"});
    EXPECT_FALSE(HeaderOf(dialog).style & DS_SETFONT) << "no face, no font";
    dialog.AddButton(std::string(4000, 'a').c_str(), 0, 0, {}, 1);
    dialog.AddButton(std::string(4000, 'b').c_str(), 0, 0, {}, 2); // ends at 16078, the next starts at 16080
    dialog.AddButton(std::string(139, 'c').c_str(), 0, 0, {}, 3);  // would end at 16384
    EXPECT_EQ(HeaderOf(dialog).cdit, 2);
    ASSERT_EQ(capture.Texts().size(), 2u);
    EXPECT_EQ(capture.Texts()[1],
              "length + usedBufferLength < totalBufferLength|Your dialog has taken more than 16k of memory. "
              "Something catastrophic has gone wrong.");
    dialog.AddButton(std::string(138, 'c').c_str(), 0, 0, {}, 4);
    EXPECT_EQ(HeaderOf(dialog).cdit, 3) << "a smaller one fits, up to the last two bytes";
    EXPECT_EQ(capture.Failures().size(), 2u);
}

} // namespace
