#include "Libs/Tarnel/Reflection/tests/Reflection_TestTypes.h"

Reflection_DefineEnum(ReflectedColour, Reflection_Enumerator(ReflectedColour::Red, "RED"),
                      Reflection_Enumerator(ReflectedColour::Green, "GREEN"));

Reflection_DefineType(ReflectedBase, Reflection_Field(id, "Id"));

Reflection_DefineType(ReflectedRecord, Reflection_Base(ReflectedBase),
                      Reflection_Field(file, "file", Reflection::OptionalAttribute(),
                                       Reflection::NameAttribute("File")),
                      Reflection_Field(baseAddr, "baseAddr"), Reflection_Field(parts, "parts"),
                      Reflection_Field(colour, "colour"));

Reflection_DefineType(ReflectedTree, Reflection_Field(children, "children"));

Reflection_DefinePolymorphicType(ReflectedView, Reflection_Base(ReflectedBase),
                                 Reflection_Field(scale, "scale"));

Reflection_DefineType(WronglyDeclared);

Reflection_DefineType(ReflectedLate, Reflection_Field(inner, "inner"), Reflection_Field(number, "number"));

void* ReflectedView::QueryObj(const Reflection::TypeDescriptor& type) {
    return type == Reflection::TypeOf<ReflectedView>() ? this : nullptr;
}
