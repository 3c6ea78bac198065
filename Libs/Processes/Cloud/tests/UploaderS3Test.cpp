#include "Libs/Processes/Cloud/src/UploaderS3.h"

#include <thread>

#include <gtest/gtest.h>

#include "Libs/Processes/Cloud/src/CloudComponent.h"
#include "tests/support/ProcessFixture.h"

using UploaderS3Test = ProcessFixture;

TEST_F(UploaderS3Test, ComponentIsAskedForBeforeTheSection) {
    FactoryInstance<IApplicationComponent>().RegisterMaker<CloudComponent>("CloudComponent");
    FactoryInstance<IApplicationProcess>().RegisterMaker<UploaderS3>("UploaderS3");
    for (const char* const components : {"", R"("CloudComponent")"}) {
        m_application = std::make_shared<ApplicationBase>();
        WriteConfiguration(R"("UploaderS3":["Upload"])", "", components);
        EXPECT_TRUE(Initialize());
    }
    ASSERT_EQ(m_log.Errors().size(), 2u);
    EXPECT_TRUE(m_log.Errors()[0].ends_with("UploaderS3 requires CloudComponent for initialization"));
    EXPECT_TRUE(m_log.Errors()[1].ends_with("configuration section not found"));
}

TEST(CloudComponent, OtherThreadsAreReported) {
    GetMainThreadId();
    const AssertCapture asserts;
    CloudComponent component;
    std::thread([&] { EXPECT_TRUE(component.Initialize(0, nullptr) && component.Shutdown()); }).join();
    ASSERT_EQ(asserts.Failures().size(), 2u);
    EXPECT_EQ(asserts.Failures()[1].expression, "GetMainThreadId() == GetCurrentThreadIdImpl()");
    EXPECT_EQ(asserts.Failures()[1].sourceUnit, "Libs/Processes/Cloud/src/CloudComponent");
}
