#include "Libs/Tarnel/String/src/String_Basic.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/AssertCapture.h"

namespace {

// Counts what a text asks for, and refuses on demand.
struct TestAllocator {
    inline static int live = 0;
    inline static int allocations = 0;
    inline static bool refuses = false;

    static void* Allocate(std::size_t bytes) {
        if (refuses) {
            return nullptr;
        }
        ++live;
        ++allocations;
        return String::HeapAllocator::Allocate(bytes);
    }
    static void Free(void* block) {
        --live;
        String::HeapAllocator::Free(block);
    }
};

using Text = String::BasicT<String::Encoding::UTF8, TestAllocator>;
using WideText = String::BasicT<String::Encoding::WIDE_CHAR>;

class Basic : public testing::Test {
public:
    Basic() { TestAllocator::allocations = 0; }
    ~Basic() override {
        TestAllocator::refuses = false;
        EXPECT_EQ(0, TestAllocator::live);
    }

protected:
    static bool IsSharedEmpty(const Text& text) { return text.CStr() == EXP_GetEmptyBasicString(); }
};

} // namespace

TEST_F(Basic, EmptyTextsShareOneValue) {
    const Text texts[] = {Text(), Text(""), Text(static_cast<const char*>(nullptr))};
    for (const Text& text : texts) {
        EXPECT_TRUE(IsSharedEmpty(text));
        EXPECT_STREQ("", text.CStr());
        EXPECT_EQ(0u, text.Length());
    }
    EXPECT_EQ(0, TestAllocator::allocations);
    EXPECT_EQ(WideText().CStr(), EXP_GetEmptyBasicString());
}

TEST_F(Basic, BlockIsUsedAgainWhileItIsLargeEnough) {
    Text text("crash");
    EXPECT_EQ(6u, text.Capacity());
    text.Assign("dump!");
    text.Assign("log");
    EXPECT_EQ(1, TestAllocator::allocations);
    EXPECT_STREQ("log", text.CStr());
    text.Assign("header");
    EXPECT_EQ(2, TestAllocator::allocations);
    EXPECT_EQ(1, TestAllocator::live);
    EXPECT_EQ(7u, text.Capacity());
    EXPECT_EQ("header", text.AsView());
}

TEST_F(Basic, EmptyAssignmentReleasesTheBlock) {
    Text text("crash");
    text.Assign("");
    EXPECT_EQ(0, TestAllocator::live);
    EXPECT_TRUE(IsSharedEmpty(text));
}

TEST_F(Basic, AssignsAPartOfItself) {
    Text text("header.json");
    text.Assign(text.AsView().substr(7));
    EXPECT_STREQ("json", text.CStr());
    text.Assign(Text::View("a\0b", 3));
    EXPECT_EQ(3u, text.Length());
}

TEST_F(Basic, CopiesAndMoves) {
    Text first("first");
    Text copy(first);
    EXPECT_NE(first.CStr(), copy.CStr());
    EXPECT_EQ(first, copy);
    Text moved(std::move(first));
    EXPECT_EQ("first", moved.AsView());
    EXPECT_EQ(2, TestAllocator::live);
    moved = Text("second");
    copy = moved;
    EXPECT_EQ("second", copy.AsView());
}

TEST_F(Basic, FailedAllocationIsAssertedAndLeavesTheTextEmpty) {
    Text text("old");
    TestAllocator::refuses = true;
    const AssertCapture capture;
    text.Assign("longer than before");
    EXPECT_TRUE(IsSharedEmpty(text));
    EXPECT_EQ(std::vector<std::string>{"szBuffer|Allocation Failed"}, capture.Texts());
}

TEST_F(Basic, TruncateKeepsTheSharedValueUntouched) {
    Text text("header");
    text.Truncate(4);
    EXPECT_STREQ("head", text.CStr());
    text.Truncate(9);
    EXPECT_EQ(4u, text.Length());

    const AssertCapture capture;
    Text().Truncate(0);
    EXPECT_EQ(std::vector<std::string>{"this->m_sz != GetEmptyString()|"}, capture.Texts());
}

TEST_F(Basic, WideTextsCountUnits) {
    const WideText text(L"dump");
    EXPECT_EQ(4u, text.Length());
    EXPECT_EQ(L"dump", text.AsView());
}
