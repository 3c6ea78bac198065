#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_Context.h"

#include <algorithm>

namespace JsonSerialization {

namespace {

String::GlobalID AllocatorService() {
    static const String::GlobalID s_name("DocumentAllocator");
    return s_name;
}

} // namespace

Context::Context(DocumentAllocator& allocator) {
    SetService(AllocatorService(), &allocator);
}

void Context::SetService(String::GlobalID name, void* service) {
    const auto found = std::ranges::find(m_services, name, [](const auto& entry) { return entry.first; });
    if (found != m_services.end()) {
        found->second = service;
    } else {
        m_services.emplace_back(name, service);
    }
}

void* Context::FindService(String::GlobalID name) const {
    const auto found = std::ranges::find(m_services, name, [](const auto& entry) { return entry.first; });
    return found != m_services.end() ? found->second : nullptr;
}

DocumentAllocator* Context::FindAllocator() const {
    return static_cast<DocumentAllocator*>(FindService(AllocatorService()));
}

} // namespace JsonSerialization
