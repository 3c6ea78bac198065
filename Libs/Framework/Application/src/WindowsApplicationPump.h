#pragma once

#include <cstdint>

#include "Libs/Framework/Core/src/Reflected.h"

// The built-in process "MessagePump": handles the window messages of its thread. Owned by WindowsApplication,
// which adds it itself; no configuration names it.
class WindowsApplicationPump : public Reflected<WindowsApplicationPump> {
public:
    using Reflected::Reflected;

    ResultCode Initialize(const JsonDocument& config, int argc, const char** argv) override;
    bool ThreadMain() override;

    // The module with the program's resources. Constant after Initialize.
    void* GetInstance() const { return m_instance; }

private:
    void* m_instance = nullptr;    // the program's module
    void* m_window = nullptr;      // goes with the process
    uint32_t m_pollInterval = 250; // milliseconds
};
Reflection_DeclarePolymorphicType(WindowsApplicationPump);
