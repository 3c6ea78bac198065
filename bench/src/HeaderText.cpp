#include "bench/src/HeaderText.h"

#include <cstdint>
#include <cstdio>

namespace Bench {

namespace {

constexpr std::size_t Frames = 5000;

// Spread like addresses; always the same ones.
uint64_t Scatter(std::size_t number, uint64_t range) {
    return number * 2654435761u % range;
}

std::string Callstack() {
    std::string text;
    for (std::size_t i = 0; i < Frames; ++i) {
        text += (i ? "," : "") + std::to_string(0x7FF600000000 + Scatter(i, 0x40000000));
    }
    return text;
}

std::string Module(std::size_t number) {
    char text[512];
    std::snprintf(
        text, sizeof text,
        R"({"file":"C:\\Windows\\System32\\module_%03d.dll","baseAddr":%llu,"size":%llu,)"
        R"("guid1":%llu,"guid2":%d,"guid3":%d,"guid4":[%d,2,33,4,255,6,77,8],"age":1,)"
        R"("pdbPath":"D:\\build\\agent\\work\\symbols\\module_%03d.pdb"})",
        static_cast<int>(number), static_cast<unsigned long long>(0x7FF800000000 + number * 0x100000),
        static_cast<unsigned long long>(0x1000 + Scatter(number, 0x80000)),
        static_cast<unsigned long long>(Scatter(number, 0xFFFFFFFF)), static_cast<int>(number + 100),
        static_cast<int>(number + 20000), static_cast<int>(number % 256), static_cast<int>(number));
    return text;
}

std::string Modules() {
    std::string text;
    for (std::size_t i = 0; i < HeaderModules; ++i) {
        text += (i ? "," : "") + Module(i);
    }
    return text;
}

} // namespace

std::string MakeHeaderText() {
    return R"({"HeaderVersion":1,"Host":"PLAYER-PC","Time":"2026-11-21 07:30:00","Application":"SampleGame",)"
           R"("Source":"EXTERNAL","Project":"Sample","SubmissionType":"crash","Line":0,"File":"",)"
           R"("InstanceKey":"","Key":"","Catalog":{"Dump":{"File":"1_Minidump.dmp","MD5":""},)"
           R"("Log":{"File":"game.log","MD5":""},"Attachments":[{"File":"dxdiag.txt","MD5":""}]},)"
           R"("Exception":{"Message":"Access violation","StackTrace":"main\nWinMain"},)"
           R"("StackFrameStart":0,"StackFrameEnd":4999,"Callstack":[)" +
           Callstack() + R"(],"Session":{"Hash":123456789012345,"Time":1700000000},"ModuleInfo":[)" +
           Modules() + R"(],"Version":{"Major":1,"Minor":2,"Rev":3,"Build":4},"Changelist":123456})";
}

} // namespace Bench
