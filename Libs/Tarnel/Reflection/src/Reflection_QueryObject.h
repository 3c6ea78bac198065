#pragma once

namespace Reflection {

struct TypeDescriptor;

// An object that can be asked at run time for a view of itself as another reflected type.
class IQueryObject {
public:
    // This object as the requested type, or null. The pointer is of exactly that type and lives as long as
    // the object.
    virtual void* QueryObj(const TypeDescriptor& type) = 0;
    virtual ~IQueryObject() = default;
};

} // namespace Reflection
