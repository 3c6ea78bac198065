#pragma once

#include "Libs/Framework/Core/src/ApplicationProcessBase.h"

// Lets an operator stop the program: key Q on its console asks the application to shut down. Without a
// console it never does. Owned by the application.
class Shutdowner : public ApplicationProcessBase {
public:
    using ApplicationProcessBase::ApplicationProcessBase;

    ResultCode Initialize(const JsonDocument& config, int argc, const char** argv) override;
    bool ThreadMain() override;
};
