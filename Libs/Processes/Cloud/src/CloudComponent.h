#pragma once

#include "Libs/Framework/Core/src/IApplicationComponent.h"
#include "Libs/Framework/Core/src/ReflectedProcess.h"
#include "Libs/Tarnel/Reflection/src/Reflection_Declaration.h"

// Brackets the use of the object store's client in this process. Owned by the application, which initialises
// it before any uploader and shuts it down after the last upload has ended; an uploader does not configure
// itself without one. Main thread only. No configuration, no state.
class CloudComponent : public Reflected<CloudComponent, IApplicationComponent> {
public:
    ResultCode Initialize(int argc, const char** argv) override;
    ResultCode Shutdown() override;
};
Reflection_DeclarePolymorphicType(CloudComponent);
