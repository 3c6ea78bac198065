#pragma once

#include "Libs/Framework/Core/src/ApplicationProcessBase.h"
#include "Libs/Tarnel/Reflection/src/Reflection_Declaration.h"

// Gives a process or component class its place in the reflection: it answers queries for its own type and for
// what its base answers, and can be asked for its type. The class derives from it with itself as argument:
//
//   class ProcessMonitor : public Reflected<ProcessMonitor> { ... };
//   class UploaderS3 : public Reflected<UploaderS3, UploaderBase> { ... };
//   class CloudComponent : public Reflected<CloudComponent, IApplicationComponent> { ... };
//   Reflection_DeclarePolymorphicType(ProcessMonitor);
template <class Derived, class Base = ApplicationProcessBase>
class Reflected : public Base {
public:
    using Base::Base;

    void* QueryObj(const Reflection::TypeDescriptor& type) override {
        if (&type == &Reflection::TypeOf<Derived>()) {
            return static_cast<Derived*>(this);
        }
        return Base::QueryObj(type);
    }

    // The class among the registered types: its identity, and its description. Only some
    // bases have the two, so neither can say "override".
    // NOLINTBEGIN(modernize-use-override)
    virtual String::GlobalID GetStaticType() const { return Reflection::TypeOf<Derived>().Id(); }
    virtual const Reflection::TypeDescriptor& GetTypeDescription() const {
        return Reflection::TypeOf<Derived>();
    }
    // NOLINTEND(modernize-use-override)
};
