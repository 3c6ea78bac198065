#include "Libs/Tarnel/Reflection/src/Reflection_Declaration.h"

#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/OnThreads.h"

using Reflection::TypeDescriptor;
using Reflection::TypeOf;

enum class ReflectedColour : uint8_t { Red, Green = 7 };
Reflection_DeclareEnum(ReflectedColour);
Reflection_DefineEnum(ReflectedColour, Reflection_Enumerator(ReflectedColour::Green, "GREEN"));

struct ReflectedBase {
    uint16_t id = 0;
};
Reflection_DeclareType(ReflectedBase);
Reflection_DefineType(ReflectedBase, Reflection_Field(id, "Id"));

// The base's part does not begin where the whole does, because of the v-table. Contains itself.
struct ReflectedView : Reflection::IQueryObject, ReflectedBase {
    void* QueryObj(const TypeDescriptor& type) override {
        return type == TypeOf<ReflectedView>() ? this : nullptr;
    }
    std::string file;
    std::vector<std::map<std::string, ReflectedView>> children;
};
Reflection_DeclarePolymorphicType(ReflectedView);
Reflection_DefinePolymorphicType(ReflectedView, Reflection_Base(ReflectedBase),
                                 Reflection_Field(file, "file", Reflection::OptionalAttribute(),
                                                  Reflection::NameAttribute("File")),
                                 Reflection_Field(children, "children"));

// First of all, so that the threads register the types. Half of them begin with the inner type.
TEST(TypeRegistration, ThreadsGetOneFinishedDescriptor) {
    std::vector<const TypeDescriptor*> types(8);
    TestSupport::OnThreads(8, [&](int i) {
        using Inner = std::vector<std::map<std::string, ReflectedView>>;
        const TypeDescriptor& type = i % 2 ? TypeOf<ReflectedView>() : *TypeOf<Inner>().element->element;
        EXPECT_EQ(type.fields.size(), 2u);
        types[static_cast<std::size_t>(i)] = &type;
    });
    EXPECT_EQ(types, std::vector<const TypeDescriptor*>(8, &TypeOf<ReflectedView>()));
}

TEST(TypeDescriptor, HasItsRegisteredName) {
    using Text = String::BasicT<String::Encoding::UTF8>;
    EXPECT_STREQ(TypeOf<wchar_t>().name.Text(), sizeof(wchar_t) == 2 ? "char16" : "char32");
    EXPECT_STREQ((TypeOf<Platform::StaticHeapAllocator<uint64_t, 4>>().name.Text()),
                 "Platform::StaticHeapAllocator<8, 4>");
    EXPECT_STREQ(TypeOf<Text>().name.Text(), "String::BasicT<String::UTF8, String::HeapAllocator>");
    EXPECT_STREQ((TypeOf<std::map<std::string, std::vector<ReflectedBase>>>().name.Text()),
                 "std::map<std::basic_string<char>,std::vector<ReflectedBase>>");
    EXPECT_EQ(TypeOf<ReflectedColour>().enumerators[0].value, 7u);
}

TEST(TypeDescriptor, KnowsWhereItsPartsLie) {
    const TypeDescriptor& type = TypeOf<ReflectedView>();
    ReflectedView view;
    const auto* const start = reinterpret_cast<const char*>(&view);
    EXPECT_EQ(start + type.baseOffset, reinterpret_cast<char*>(static_cast<ReflectedBase*>(&view)));
    EXPECT_EQ(start + type.fields[0].offset, reinterpret_cast<char*>(&view.file));
    EXPECT_EQ(Reflection::Query<ReflectedView>(view), &view);
    EXPECT_EQ(Reflection::Query<ReflectedBase>(view), nullptr);
}
