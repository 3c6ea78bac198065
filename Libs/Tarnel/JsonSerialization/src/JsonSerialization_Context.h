#pragma once

#include <utility>
#include <vector>

#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_Document.h"
#include "Libs/Tarnel/String/src/String_Global.h"

namespace JsonSerialization {

// What readers and writers can ask for by name while a document is read or written. Owns nothing: a service
// must outlive the context. One thread.
class Context {
public:
    Context() = default; // for reading
    explicit Context(DocumentAllocator& allocator);

    // Replaces a service of that name.
    void SetService(String::GlobalID name, void* service);
    void* FindService(String::GlobalID name) const; // null when there is none

    // The allocator of the document that is written; null when the context carries none.
    DocumentAllocator* FindAllocator() const;

private:
    std::vector<std::pair<String::GlobalID, void*>> m_services;
};

} // namespace JsonSerialization
