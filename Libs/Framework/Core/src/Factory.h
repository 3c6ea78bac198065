#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <string>

#include "Libs/Framework/Core/src/ApplicationProcessBase.h"
#include "Libs/Framework/Core/src/IApplicationComponent.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Assert.h"

class ApplicationBase;

// Makes objects of one interface by name. What Make takes depends on the interface.
template <class Interface>
struct Maker;

template <>
struct Maker<IApplicationProcess> {
    virtual ~Maker() = default;
    virtual std::shared_ptr<IApplicationProcess> Make(ApplicationBase* application, const char* name) = 0;
};

template <>
struct Maker<IApplicationComponent> {
    virtual ~Maker() = default;
    virtual std::shared_ptr<IApplicationComponent> Make() = 0;
};

template <class T, class Interface>
struct TypedMaker;

template <class T>
struct TypedMaker<T, IApplicationProcess> final : Maker<IApplicationProcess> {
    std::shared_ptr<IApplicationProcess> Make(ApplicationBase* application, const char* name) override {
        return std::make_shared<T>(application, name);
    }
};

template <class T>
struct TypedMaker<T, IApplicationComponent> final : Maker<IApplicationComponent> {
    std::shared_ptr<IApplicationComponent> Make() override { return std::make_shared<T>(); }
};

// The makers of one interface by name. One factory an interface, reached through FactoryInstance. Makers are
// registered by static initialisers and looked up on the main thread; any thread may do either.
template <class Interface>
class Factory {
public:
    Factory() {
        static int checkThreading = 0;
        PLATFORM_ASSERT(++checkThreading == 1);
    }
    Factory(const Factory&) = delete; // there is one an interface
    Factory& operator=(const Factory&) = delete;

    template <class T>
    void RegisterMaker(const char* procName) {
        // Checked outside the lock: whoever is told may look a maker up. A name is registered once, so nobody
        // else is at this one.
        PLATFORM_ASSERT_TEXT(FindMaker(procName) == nullptr, "m_makers.find(procName) == m_makers.end()");
        const std::lock_guard lock(m_lock);
        m_makers.emplace(procName, std::make_shared<TypedMaker<T, Interface>>());
    }

    // Empty when the name is unknown. Case matters.
    std::shared_ptr<Maker<Interface>> FindMaker(const std::string& name) {
        const std::lock_guard lock(m_lock);
        const auto found = m_makers.find(name);
        return found == m_makers.end() ? nullptr : found->second;
    }

private:
    std::mutex m_lock;
    std::map<std::string, std::shared_ptr<Maker<Interface>>> m_makers;
};

template <class Interface>
Factory<Interface>& FactoryInstance() {
    static Factory<Interface> s_factory;
    return s_factory;
}
