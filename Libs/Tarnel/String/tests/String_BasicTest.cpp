#include "Libs/Tarnel/String/src/String_Basic.h"

#include <gtest/gtest.h>

using Text = String::BasicT<String::Encoding::UTF8>;

TEST(Basic, EmptyTextsShareOneValue) {
    Text text("crash");
    text.Assign("");
    for (const char* characters :
         {Text().CStr(), Text(static_cast<const char*>(nullptr)).CStr(), text.CStr()}) {
        EXPECT_EQ(characters, EXP_GetEmptyBasicString());
        EXPECT_STREQ(characters, "");
    }
}

TEST(Basic, ReusesItsBlockWhileItIsLargeEnough) {
    Text text("header.json");
    const char* const block = text.CStr();
    text.Assign(Text::View(text).substr(7));
    EXPECT_EQ(text.CStr(), block);
    EXPECT_STREQ(text.CStr(), "json");
    text.Assign("twelve bytes");
    EXPECT_EQ(text.Capacity(), 13u);
    EXPECT_EQ(text, Text("twelve bytes"));
}
