#pragma once

#include "Libs/Tarnel/Platform/src/Common/Platform_ResultCode.h"
#include "Libs/Tarnel/Reflection/src/Reflection_QueryObject.h"

// A named object without a thread that lives as long as the application, made by its maker's name. Both calls
// come on the main thread: before the processes are initialised, and after the last of them has ended.
class IApplicationComponent : public Reflection::IQueryObject {
public:
    void* QueryObj(const Reflection::TypeDescriptor&) override { return nullptr; }
    virtual ResultCode Initialize(int argc, const char** argv) = 0;
    virtual ResultCode Shutdown() = 0;
};
