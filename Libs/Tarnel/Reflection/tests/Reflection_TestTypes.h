#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "Libs/Tarnel/Reflection/src/Reflection_Declaration.h"

enum class ReflectedColour : uint8_t { Red, Green = 7 };
Reflection_DeclareEnum(ReflectedColour);

struct ReflectedBase {
    uint16_t id = 0;
};
Reflection_DeclareType(ReflectedBase);

struct ReflectedRecord : ReflectedBase {
    std::string file;
    uint64_t baseAddr = 0;
    std::vector<ReflectedBase> parts;
    ReflectedColour colour = ReflectedColour::Red;
};
Reflection_DeclareType(ReflectedRecord);

// Leads back to itself.
struct ReflectedTree {
    std::vector<ReflectedTree> children;
};
Reflection_DeclareType(ReflectedTree);

// A base whose part lies behind the v-table pointer of the whole.
class ReflectedView : public Reflection::IQueryObject, public ReflectedBase {
public:
    void* QueryObj(const Reflection::TypeDescriptor& type) override;
    float scale = 1;
};
Reflection_DeclarePolymorphicType(ReflectedView);

class WronglyDeclared {
public:
    virtual ~WronglyDeclared() = default;
};
Reflection_DeclareType(WronglyDeclared);

// For the thread test alone, so that its first use is there.
struct ReflectedLate {
    std::vector<std::map<std::string, ReflectedLate>> inner;
    int32_t number = 0;
};
Reflection_DeclareType(ReflectedLate);
