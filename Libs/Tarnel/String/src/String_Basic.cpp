#include "Libs/Tarnel/String/src/String_Basic.h"

#include "Libs/Tarnel/Platform/src/Common/Platform_Memory.h"

namespace String {

namespace {

// Never written: its capacity of 0 makes every assignment allocate.
struct alignas(8) EmptyValue {
    BasicHeader header = {0, 0};
    char32_t terminator = 0;
};
static_assert(offsetof(EmptyValue, terminator) == sizeof(BasicHeader));

constexpr EmptyValue EmptyBasicString = {};

} // namespace

void* HeapAllocator::Allocate(std::size_t bytes) {
    return Platform::GeneralAllocate(bytes);
}

void HeapAllocator::Free(void* block) {
    Platform::GeneralFree(block);
}

} // namespace String

const void* EXP_GetEmptyBasicString() {
    return &String::EmptyBasicString.terminator;
}
