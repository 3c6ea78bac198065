#include "Libs/Tarnel/Reflection/src/Reflection_Declaration.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Libs/Tarnel/Reflection/tests/Reflection_TestTypes.h"
#include "tests/support/AssertCapture.h"
#include "tests/support/OnThreads.h"

using Reflection::TypeDescriptor;
using Reflection::TypeOf;

TEST(TypeDescriptor, BuiltInAndGenericTypesHaveTheirNames) {
    using Text = String::BasicT<String::Encoding::UTF8>;
    using Sized = Platform::StaticHeapAllocator<uint64_t, 4>;
    const struct {
        const TypeDescriptor& type;
        const char* name;
        std::size_t size;
    } rows[] = {
        {TypeOf<int8_t>(), "int8", 1},
        {TypeOf<int64_t>(), "int64", 8},
        {TypeOf<uint16_t>(), "uint16", 2},
        {TypeOf<uint32_t>(), "uint32", 4},
        {TypeOf<float>(), "float", 4},
        {TypeOf<double>(), "double", 8},
        {TypeOf<bool>(), "bool", 1},
        {TypeOf<char>(), "char", 1},
        {TypeOf<char16_t>(), "char16", 2},
        {TypeOf<char32_t>(), "char32", 4},
        {TypeOf<wchar_t>(), sizeof(wchar_t) == 2 ? "char16" : "char32", sizeof(wchar_t)},
        {TypeOf<Reflection::NullType>(), "NullType", 1},
        {TypeOf<String::Global>(), "String::Global", sizeof(void*)},
        {TypeOf<String::GlobalID>(), "String::GlobalID", 4},
        {TypeOf<String::Encoding>(), "String::Encoding", 4},
        {TypeOf<Sized>(), "Platform::StaticHeapAllocator<8, 4>", sizeof(Sized)},
        {TypeOf<Text>(), "String::BasicT<String::UTF8, String::HeapAllocator>", sizeof(void*)},
        {TypeOf<std::string>(), "std::basic_string<char>", sizeof(std::string)},
        {TypeOf<std::vector<ReflectedBase>>(), "std::vector<ReflectedBase>", sizeof(std::vector<int>)},
        {TypeOf<std::map<std::string, std::vector<std::string>>>(),
         "std::map<std::basic_string<char>,std::vector<std::basic_string<char>>>",
         sizeof(std::map<std::string, int>)},
    };
    for (const auto& row : rows) {
        EXPECT_STREQ(row.name, row.type.name.Text());
        EXPECT_EQ(row.size, row.type.size) << row.name;
        EXPECT_EQ(String::GlobalID(row.name), row.type.Id()) << row.name;
    }
}

TEST(TypeDescriptor, RecordListsItsOwnFields) {
    const TypeDescriptor& type = TypeOf<ReflectedRecord>();
    EXPECT_STREQ("ReflectedRecord", type.name.Text());
    EXPECT_EQ(sizeof(ReflectedRecord), type.size);
    EXPECT_FALSE(type.isPolymorphic);
    EXPECT_EQ(&TypeOf<ReflectedBase>(), type.base);
    EXPECT_EQ(0u, type.baseOffset);

    ReflectedRecord record;
    const auto* const start = reinterpret_cast<const char*>(&record);
    const struct {
        const char* name;
        const TypeDescriptor& type;
        const void* place;
    } rows[] = {{"file", TypeOf<std::string>(), &record.file},
                {"baseAddr", TypeOf<uint64_t>(), &record.baseAddr},
                {"parts", TypeOf<std::vector<ReflectedBase>>(), &record.parts},
                {"colour", TypeOf<ReflectedColour>(), &record.colour}};
    ASSERT_EQ(std::size(rows), type.fields.size());
    for (std::size_t i = 0; i < std::size(rows); ++i) {
        EXPECT_STREQ(rows[i].name, type.fields[i].name.Text());
        EXPECT_EQ(&rows[i].type, type.fields[i].type);
        EXPECT_EQ(rows[i].place, start + type.fields[i].offset);
        EXPECT_EQ(&type, type.fields[i].owner);
    }
}

TEST(TypeDescriptor, PolymorphicTypeKnowsWhereItsBaseLies) {
    const TypeDescriptor& type = TypeOf<ReflectedView>();
    ReflectedView view;
    EXPECT_TRUE(type.isPolymorphic);
    EXPECT_EQ(static_cast<ReflectedBase*>(&view),
              reinterpret_cast<void*>(reinterpret_cast<char*>(&view) + type.baseOffset));
    EXPECT_EQ(&view, Reflection::Query<ReflectedView>(view));
    EXPECT_EQ(nullptr, Reflection::Query<ReflectedBase>(view));
}

TEST(TypeDescriptor, EnumerationKeepsValuesAndNames) {
    const TypeDescriptor& type = TypeOf<ReflectedColour>();
    ASSERT_EQ(2u, type.enumerators.size());
    EXPECT_EQ(7u, type.enumerators[1].value);
    EXPECT_STREQ("GREEN", type.enumerators[1].name.Text());
    EXPECT_EQ(String::GlobalID("GREEN"), type.enumerators[1].name.Id());
}

TEST(Attribute, IsFoundByItsRegisteredName) {
    const Reflection::FieldDescriptor& field = TypeOf<ReflectedRecord>().fields[0];
    const auto find = [&](const char* name) {
        return Reflection::FindAttribute(field.attributes, String::GlobalID(name));
    };
    EXPECT_NE(nullptr, find("OptionalAttribute"));
    EXPECT_EQ(nullptr, find("IgnoreAttribute"));
    ASSERT_NE(nullptr, find("NameAttribtue"));
    EXPECT_STREQ("File", std::get<String::Global>(find("NameAttribtue")->value).Text());
    EXPECT_STREQ("file", field.name.Text());
}

TEST(TypeRegistration, TypeMayLeadBackToItself) {
    const TypeDescriptor& tree = TypeOf<ReflectedTree>();
    EXPECT_EQ(&tree, tree.fields[0].type->element);
}

TEST(TypeRegistration, ThreadsGetOneFinishedDescriptor) {
    constexpr int ThreadCount = 8;
    std::vector<const TypeDescriptor*> types(ThreadCount);
    std::vector<std::size_t> innerFields(ThreadCount);
    TestSupport::OnThreads(ThreadCount, [&](int number) {
        // Half of them come in by the inner type.
        using Inner = std::vector<std::map<std::string, ReflectedLate>>;
        const TypeDescriptor& inner = *TypeOf<Inner>().element->element;
        const auto i = static_cast<std::size_t>(number);
        types[i] = i % 2 ? &TypeOf<ReflectedLate>() : &inner;
        innerFields[i] = types[i]->fields.size();
    });
    EXPECT_EQ(std::vector<const TypeDescriptor*>(ThreadCount, &TypeOf<ReflectedLate>()), types);
    EXPECT_EQ(std::vector<std::size_t>(ThreadCount, 2), innerFields);
}

TEST(TypeRegistration, ReportsAVTableWithoutThePolymorphicForm) {
    const AssertCapture capture;
    TypeOf<WronglyDeclared>();
    TypeOf<WronglyDeclared>();
    ASSERT_EQ(1u, capture.Failures().size());
    EXPECT_EQ("The type \"WronglyDeclared\" has a v-table but is not declared as polymorphic.  Please use "
              "Reflection_DeclarePolymorphicType in place of Reflection_DeclareType for this type.",
              capture.Failures()[0].message);
}

TEST(TypeRegistration, ReportsAnEnumerationWithoutName) {
    const AssertCapture capture;
    TypeDescriptor descriptor;
    Reflection::BuildEnum<ReflectedColour>(descriptor, "");
    EXPECT_EQ(std::vector<std::string>{"!String::IsNullOrEmpty(szEnumType)|"}, capture.Texts());
}
