#pragma once

#include "Libs/Framework/Core/src/IApplicationComponent.h"
#include "Libs/Framework/Core/src/Reflected.h"
#include "Libs/Tarnel/Reflection/src/Reflection_Declaration.h"

// Brackets the use of the object store's client in this process. Owned by the application, which initialises
// it before any uploader and shuts it down after the last upload; its destructor does so if a run
// failed before that. An uploader does not start without one. Main thread only. No configuration, no state.
class CloudComponent : public Reflected<CloudComponent, IApplicationComponent> {
public:
    CloudComponent() = default;
    ~CloudComponent() override;
    CloudComponent(const CloudComponent&) = delete; // one bracket
    CloudComponent& operator=(const CloudComponent&) = delete;

    ResultCode Initialize(int argc, const char** argv) override;
    ResultCode Shutdown() override;
};
Reflection_DeclarePolymorphicType(CloudComponent);
