#include "Libs/Framework/Core/src/Factory.h"

#include <gtest/gtest.h>

#include "Libs/Framework/Core/src/ApplicationProcessBase.h"
#include "tests/support/AssertCapture.h"

namespace {

class Sleeper : public ApplicationProcessBase {
public:
    using ApplicationProcessBase::ApplicationProcessBase;
    ResultCode Initialize(const JsonDocument&, int, const char**) override { return Platform::Success; }
    bool ThreadMain() override { return IsStopRequested(); }
};

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
    const AssertCapture assertions;
    auto& factory = FactoryInstance<IApplicationProcess>();
    factory.RegisterMaker<Sleeper>("Twice");
    const auto first = factory.FindMaker("Twice");
    EXPECT_EQ(assertions.Texts(), std::vector<std::string>());
    factory.RegisterMaker<Sleeper>("Twice");
    EXPECT_EQ(assertions.Texts(), std::vector<std::string>{"m_makers.find(procName) == m_makers.end()|"});
    EXPECT_EQ(factory.FindMaker("Twice"), first);
}

} // namespace
