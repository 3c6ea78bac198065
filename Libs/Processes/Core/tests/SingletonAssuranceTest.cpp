#include "Libs/Processes/Core/src/SingletonAssurance.h"

#include <gtest/gtest.h>

#include "Libs/Framework/Core/src/ApplicationBase.h"
#include "tests/support/LogCapture.h"

// Which copy stays is decided elsewhere, and two real ones meet in the end-to-end tests.
namespace {

ResultCode InitializeWith(SingletonAssurance& singleton, const char* argument) {
    const char* argv[] = {argument};
    return singleton.Initialize(JsonDocument(), argument ? 1 : 0, argv);
}

TEST(SingletonAssurance, NeedsAnExecutablesName) {
    ApplicationBase application;
    SingletonAssurance singleton(&application, "Singleton");
    EXPECT_STREQ(InitializeWith(singleton, R"(C:\Tools\)").Text(),
                 "Invalid executable name passed through argv[0]!");
    EXPECT_TRUE(InitializeWith(singleton, R"(C:\Tools\agent.exe)"));
    EXPECT_TRUE(InitializeWith(singleton, "agent.exe"));
    EXPECT_TRUE(InitializeWith(singleton, nullptr));
}

TEST(SingletonAssurance, TheOnlyCopyGoesOnInSilence) {
    TestSupport::LogCapture log;
    ApplicationBase application;
    SingletonAssurance singleton(&application, "Singleton");
    for (const char* argument : {"SingletonTest.exe", "No such program.exe", ""}) {
        ASSERT_TRUE(InitializeWith(singleton, argument));
        ASSERT_TRUE(singleton.PostInitialize());
        EXPECT_FALSE(singleton.ThreadMain()) << "nobody asked it to stop";
    }
    EXPECT_TRUE(log.Entries().empty());
}

} // namespace
