#include "Libs/Framework/Core/src/Factory.h"

#include <tuple>

#include <gtest/gtest.h>

#include "Libs/Framework/Core/src/ApplicationProcessBase.h"
#include "Libs/Framework/Core/tests/TestSupport.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_AssertState.h"

namespace {

class Sleeper : public ApplicationProcessBase {
public:
    using ApplicationProcessBase::ApplicationProcessBase;
    ResultCode Initialize(const JsonDocument&, int, const char**) override { return Platform::Success; }
    bool ThreadMain() override { return IsStopRequested(); }
};

int g_failedChecks = 0;
int CountFailedCheck(const char*, int, const char* expression, const char*) {
    g_failedChecks += std::string(expression) == "m_makers.find(procName) == m_makers.end()";
    return Platform::AssertAnswer_IgnoreOnce;
}

TEST(Factory, FindsMakersByTheExactName) {
    auto& factory = FactoryInstance<IApplicationProcess>();
    factory.RegisterMaker<Sleeper>("Sleeper");
    EXPECT_EQ(factory.FindMaker("sleeper"), nullptr);
    EXPECT_EQ(factory.FindMaker("Sleepe"), nullptr);
    const auto maker = factory.FindMaker("Sleeper");
    ASSERT_NE(maker, nullptr);
    EXPECT_STREQ(maker->Make(nullptr, "An instance")->GetName(), "An instance");
}

TEST(Factory, ANameIsRegisteredOnce) {
    const TestSupport::LogCapture log;
    Platform::AssertState& state = *EXP_GetAssertState();
    const auto saved = std::pair(state.handlers[0], state.showDialogs);
    state.handlers[0] = &CountFailedCheck;
    state.showDialogs = 1;
    auto& factory = FactoryInstance<IApplicationProcess>();
    factory.RegisterMaker<Sleeper>("Twice");
    const auto first = factory.FindMaker("Twice");
    EXPECT_EQ(g_failedChecks, 0);
    factory.RegisterMaker<Sleeper>("Twice");
    EXPECT_EQ(g_failedChecks, 1);
    EXPECT_EQ(factory.FindMaker("Twice"), first);
    std::tie(state.handlers[0], state.showDialogs) = saved;
}

} // namespace
