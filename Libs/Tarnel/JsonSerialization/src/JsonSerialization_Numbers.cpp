#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_Numbers.h"

#include <cstdint>
#include <limits>

#include "Libs/Tarnel/Reflection/src/Reflection_Declaration.h"

namespace JsonSerialization {

namespace {

// One row for each width of number that the data knows: what it accepts, how it is taken out and put in. Null
// reads as zero everywhere; a narrower field then takes the low bits.
struct Bool {
    static bool Fits(const JsonValue& value) { return value.IsBool(); }
    static bool Get(const JsonValue& value) { return value.GetBool(); }
    static void Set(JsonValue& value, bool number) { value.SetBool(number); }
    static constexpr ResultCode WrongKind = "Field not bool";
};

struct Int32 {
    static bool Fits(const JsonValue& value) { return value.IsInt(); }
    static int32_t Get(const JsonValue& value) { return value.GetInt(); }
    static void Set(JsonValue& value, int32_t number) { value.SetInt(number); }
    static constexpr ResultCode WrongKind = "Field not integer";
};

struct Uint32 {
    static bool Fits(const JsonValue& value) { return value.IsUint(); }
    static uint32_t Get(const JsonValue& value) { return value.GetUint(); }
    static void Set(JsonValue& value, uint32_t number) { value.SetUint(number); }
    static constexpr ResultCode WrongKind = "Field not unsigned integer";
};

struct Int64 {
    static bool Fits(const JsonValue& value) { return value.IsInt64(); }
    static int64_t Get(const JsonValue& value) { return value.GetInt64(); }
    static void Set(JsonValue& value, int64_t number) { value.SetInt64(number); }
    static constexpr ResultCode WrongKind = "Field not integer";
};

struct Uint64 {
    static bool Fits(const JsonValue& value) { return value.IsUint64(); }
    static uint64_t Get(const JsonValue& value) { return value.GetUint64(); }
    static void Set(JsonValue& value, uint64_t number) { value.SetUint64(number); }
    static constexpr ResultCode WrongKind = "Field not unsigned integer";
};

struct Float64 {
    static bool Fits(const JsonValue& value) { return value.IsNumber(); }
    static double Get(const JsonValue& value) { return value.GetDouble(); }
    static void Set(JsonValue& value, double number) { value.SetDouble(number); }
    static constexpr ResultCode WrongKind = "Field not number";
};

// As Float64; what a float can't hold becomes infinite.
struct Float32 : Float64 {
    static float Get(const JsonValue& value) {
        using Limits = std::numeric_limits<float>;
        const double number = value.GetDouble();
        if (number > static_cast<double>(Limits::max())) {
            return Limits::infinity();
        }
        return number < static_cast<double>(Limits::lowest()) ? -Limits::infinity()
                                                              : static_cast<float>(number);
    }
};

template <class T, class Kind>
ResultCode ReadNumber(void* object, const ReadSource& source) {
    T& number = *static_cast<T*>(object);
    if (Kind::Fits(source.value)) {
        number = static_cast<T>(Kind::Get(source.value));
    } else if (source.value.IsNull()) {
        number = T();
    } else {
        return Kind::WrongKind;
    }
    return Platform::Success;
}

template <class T, class Kind>
ResultCode WriteNumber(const void* object, const WriteTarget& target) {
    Kind::Set(target.value, *static_cast<const T*>(object));
    return Platform::Success;
}

} // namespace

void RegisterNumbers(std::map<String::GlobalID, ValueSerializer>& serializers) {
    const auto add = [&]<class T, class Kind>() {
        serializers[Reflection::TypeOf<T>().Id()] = {&ReadNumber<T, Kind>, &WriteNumber<T, Kind>};
    };
    add.template operator()<bool, Bool>();
    add.template operator()<int8_t, Int32>();
    add.template operator()<int16_t, Int32>();
    add.template operator()<int32_t, Int32>();
    add.template operator()<int64_t, Int64>();
    add.template operator()<uint8_t, Uint32>();
    add.template operator()<uint16_t, Uint32>();
    add.template operator()<uint32_t, Uint32>();
    add.template operator()<uint64_t, Uint64>();
    add.template operator()<float, Float32>();
    add.template operator()<double, Float64>();
}

} // namespace JsonSerialization
