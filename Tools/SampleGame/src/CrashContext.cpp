#include "Tools/SampleGame/src/CrashContext.h"

#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <cstring>

#include <windows.h>
// psapi.h needs windows.h first
#include <psapi.h>

#include "Tools/SampleGame/src/Files.h"

namespace SampleGame {

namespace {

// The debug directory's record that names the program database.
struct CodeViewRecord {
    uint32_t signature; // "RSDS"
    uint32_t guid1;
    uint16_t guid2, guid3;
    uint8_t guid4[8];
    uint32_t age;
    // the path follows, with its terminator
};

template <class T>
const T* At(uint64_t base, uint64_t offset) {
    // An address in an image. NOLINTNEXTLINE(performance-no-int-to-ptr)
    return reinterpret_cast<const T*>(static_cast<uintptr_t>(base + offset));
}

void ReadCodeView(const CodeViewRecord& record, uint32_t size, Module& module) {
    constexpr uint32_t Rsds = 0x53445352;
    if (size <= sizeof(record) || record.signature != Rsds) {
        return;
    }
    module.guid1 = record.guid1;
    module.guid2 = record.guid2;
    module.guid3 = record.guid3;
    std::memcpy(module.guid4.data(), record.guid4, sizeof(record.guid4));
    module.age = record.age;
    const char* path = reinterpret_cast<const char*>(&record + 1);
    module.pdbPath.assign(path, strnlen(path, size - sizeof(record)));
}

void ReadDebugInformation(Module& module) {
    const auto* dos = At<IMAGE_DOS_HEADER>(module.base, 0);
    const auto* headers = At<IMAGE_NT_HEADERS64>(module.base, static_cast<uint64_t>(dos->e_lfanew));
    if (dos->e_magic != IMAGE_DOS_SIGNATURE || headers->Signature != IMAGE_NT_SIGNATURE) {
        return;
    }
    const IMAGE_DATA_DIRECTORY& directory =
        headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_DEBUG];
    const auto* entries = At<IMAGE_DEBUG_DIRECTORY>(module.base, directory.VirtualAddress);
    for (std::size_t i = 0; i < directory.Size / sizeof(IMAGE_DEBUG_DIRECTORY); ++i) {
        if (entries[i].Type == IMAGE_DEBUG_TYPE_CODEVIEW && entries[i].AddressOfRawData != 0) {
            ReadCodeView(*At<CodeViewRecord>(module.base, entries[i].AddressOfRawData), entries[i].SizeOfData,
                         module);
        }
    }
}

std::vector<Module> LoadedModules() {
    HMODULE handles[512];
    DWORD bytes = 0;
    std::vector<Module> modules;
    if (!EnumProcessModules(GetCurrentProcess(), handles, sizeof(handles), &bytes)) {
        return modules;
    }
    const std::size_t count = std::min<std::size_t>(bytes, sizeof(handles)) / sizeof(HMODULE);
    for (std::size_t i = 0; i < count; ++i) {
        wchar_t path[1024] = {};
        MODULEINFO info = {};
        if (GetModuleFileNameW(handles[i], path, std::size(path)) == 0 ||
            !GetModuleInformation(GetCurrentProcess(), handles[i], &info, sizeof(info))) {
            continue;
        }
        Module module;
        module.path = Narrow(path);
        module.base = reinterpret_cast<uintptr_t>(info.lpBaseOfDll);
        module.size = info.SizeOfImage;
        ReadDebugInformation(module);
        modules.push_back(std::move(module));
    }
    return modules;
}

// Unwinds a copy of the crashed thread's registers with the images' unwind tables.
std::vector<uint64_t> WalkStack(CONTEXT context) {
    constexpr std::size_t MaximumFrames = 128;
    std::vector<uint64_t> frames;
    while (context.Rip != 0 && frames.size() < MaximumFrames) {
        frames.push_back(context.Rip);
        DWORD64 imageBase = 0;
        RUNTIME_FUNCTION* function = RtlLookupFunctionEntry(context.Rip, &imageBase, nullptr);
        if (function == nullptr) { // a leaf: the return address is on top of the stack
            if (frames.size() > 1) {
                break;
            }
            context.Rip = *At<DWORD64>(context.Rsp, 0);
            context.Rsp += sizeof(DWORD64);
            continue;
        }
        void* handlerData = nullptr;
        DWORD64 frame = 0;
        RtlVirtualUnwind(UNW_FLAG_NHANDLER, imageBase, context.Rip, function, &context, &handlerData, &frame,
                         nullptr);
    }
    return frames;
}

std::string DescribeException(const EXCEPTION_RECORD& record) {
    char text[160];
    if (record.ExceptionCode == EXCEPTION_ACCESS_VIOLATION && record.NumberParameters >= 2) {
        std::snprintf(text, sizeof(text), "Access violation %s 0x%" PRIx64,
                      record.ExceptionInformation[0] == 0 ? "reading" : "writing",
                      static_cast<uint64_t>(record.ExceptionInformation[1]));
    } else if (record.ExceptionCode == EXCEPTION_STACK_OVERFLOW) {
        std::snprintf(text, sizeof(text), "Stack overflow");
    } else if (record.ExceptionCode == AbortCode) {
        std::snprintf(text, sizeof(text), "Abnormal program termination");
    } else {
        std::snprintf(text, sizeof(text), "Unhandled exception 0x%08lX", record.ExceptionCode);
    }
    return text;
}

} // namespace

CrashContext CaptureContext(const EXCEPTION_POINTERS& exception) {
    CrashContext context;
    context.message = DescribeException(*exception.ExceptionRecord);
    context.callstack = WalkStack(*exception.ContextRecord);
    context.modules = LoadedModules();
    return context;
}

std::string DescribeAddress(uint64_t address, const std::vector<Module>& modules) {
    char text[32];
    for (const Module& module : modules) {
        if (address >= module.base && address - module.base < module.size) {
            std::snprintf(text, sizeof(text), "+0x%" PRIx64, address - module.base);
            return module.path.substr(module.path.find_last_of("\\/") + 1) + text;
        }
    }
    std::snprintf(text, sizeof(text), "0x%" PRIx64, address);
    return text;
}

} // namespace SampleGame
