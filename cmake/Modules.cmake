# Two declarations build the whole tree: morvane_library and morvane_test.
find_package(Threads REQUIRED)

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)

set(MORVANE_SANITIZERS "" CACHE STRING "Sanitizers of a native build, as -fsanitize takes them")
option(MORVANE_TRAP_UNDEFINED "Undefined behaviour traps (cross-built debug)" OFF)

# Settings that every target of the project shares.
add_library(morvane_options INTERFACE)
target_link_libraries(morvane_options INTERFACE morvane_warnings Threads::Threads)
target_include_directories(morvane_options INTERFACE ${CMAKE_SOURCE_DIR})
if(WIN32)
    target_compile_definitions(morvane_options INTERFACE
        UNICODE _UNICODE NOMINMAX WIN32_LEAN_AND_MEAN _WIN32_WINNT=0x0A00 __USE_MINGW_ANSI_STDIO=1)
endif()
if(MSVC)
    # __FILE__ starts at the repository's root, as the reports show it.
    target_compile_options(morvane_options INTERFACE "/d1trimfile:${CMAKE_SOURCE_DIR}\\" /guard:cf)
    target_link_options(morvane_options INTERFACE
        /guard:cf /DYNAMICBASE /HIGHENTROPYVA /NXCOMPAT
        /MANIFEST:NO) # every program has one in its resources, and there is room for one
    set(CMAKE_MSVC_RUNTIME_LIBRARY "MultiThreaded$<$<CONFIG:Debug>:Debug>")
else()
    target_compile_options(morvane_options INTERFACE
        "-fmacro-prefix-map=${CMAKE_SOURCE_DIR}/=" -fstack-protector-strong)
    target_link_options(morvane_options INTERFACE -fstack-protector-strong)
endif()
if(MINGW)
    target_compile_options(morvane_options INTERFACE -mcx16)
    target_link_options(morvane_options INTERFACE
        -static -Wl,--dynamicbase,--high-entropy-va,--nxcompat
        -Wl,--no-insert-timestamp) # the same sources give the same bytes
endif()
if(MORVANE_SANITIZERS)
    target_compile_options(morvane_options INTERFACE
        -fsanitize=${MORVANE_SANITIZERS} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(morvane_options INTERFACE -fsanitize=${MORVANE_SANITIZERS})
endif()
if(MORVANE_SANITIZERS MATCHES "fuzzer")
    target_compile_options(morvane_options INTERFACE
        -fsanitize-ignorelist=${CMAKE_SOURCE_DIR}/tests/fuzz/ignored.txt)
endif()
if(CMAKE_UNITY_BUILD AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # It takes a private type of a joined source for one of a header. Preset release joins nothing and has the warning.
    target_compile_options(morvane_options INTERFACE -Wno-subobject-linkage)
endif()
if(MORVANE_TRAP_UNDEFINED)
    target_compile_options(morvane_options INTERFACE -fsanitize=undefined -fsanitize-undefined-trap-on-error)
    target_compile_definitions(morvane_options INTERFACE _GLIBCXX_ASSERTIONS)
endif()

# The headers that cost the compiler most, read once for all libraries and once for all tests. Preset release goes
# without, and joins no sources, so that each file still has to include what it uses.
set(MORVANE_PRECOMPILED <algorithm> <atomic> <chrono> <functional> <map> <memory> <mutex> <optional> <span> <string>
    <string_view> <thread> <vector>)
if(WIN32)
    list(APPEND MORVANE_PRECOMPILED <windows.h>)
endif()
file(WRITE ${CMAKE_BINARY_DIR}/Precompiled.cpp "")
add_library(precompiled OBJECT ${CMAKE_BINARY_DIR}/Precompiled.cpp)
target_link_libraries(precompiled PRIVATE morvane_options)
target_precompile_headers(precompiled PRIVATE ${MORVANE_PRECOMPILED})

# morvane_library(NAME SOURCES file... [NEEDS target...])
function(morvane_library name)
    cmake_parse_arguments(arg "" "" "SOURCES;NEEDS" ${ARGN})
    add_library(${name} STATIC ${arg_SOURCES})
    target_link_libraries(${name} PUBLIC morvane_options ${arg_NEEDS})
    target_precompile_headers(${name} REUSE_FROM precompiled)
endfunction()

# GoogleTest comes as source where the system has it, so that every preset builds it with its own compiler and
# flags; elsewhere as a package (vcpkg).
set(MORVANE_GTEST_SOURCE /usr/src/googletest CACHE PATH "GoogleTest's source folder")
if(EXISTS ${MORVANE_GTEST_SOURCE}/CMakeLists.txt)
    set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
    set(BUILD_GMOCK OFF CACHE BOOL "" FORCE)
    add_subdirectory(${MORVANE_GTEST_SOURCE} ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL)
    target_compile_options(gtest PRIVATE -O0) # twice as fast to build, and it is not what is tested
else()
    find_package(GTest CONFIG REQUIRED)
    add_library(gtest ALIAS GTest::gtest)
    add_library(gtest_main ALIAS GTest::gtest_main)
endif()

add_library(precompiled_tests OBJECT ${CMAKE_BINARY_DIR}/Precompiled.cpp)
target_link_libraries(precompiled_tests PRIVATE morvane_options gtest)
target_precompile_headers(precompiled_tests PRIVATE ${MORVANE_PRECOMPILED} <gtest/gtest.h>)

# Every test program; of a cross build only those that test.sh runs under Wine.
add_custom_target(unit_tests)

# morvane_test(NAME [PORTABLE] SOURCES file... [NEEDS target...]): one test program, run by CTest within its time limit.
# A PORTABLE one makes no call of the system, so test.sh runs it natively, with sanitizers, and not under Wine.
function(morvane_test name)
    cmake_parse_arguments(arg "PORTABLE" "" "SOURCES;NEEDS" ${ARGN})
    add_executable(${name} ${arg_SOURCES})
    if(NOT (arg_PORTABLE AND CMAKE_CROSSCOMPILING))
        add_dependencies(unit_tests ${name})
    endif()
    target_link_libraries(${name} PRIVATE morvane_options ${arg_NEEDS} gtest gtest_main)
    target_precompile_headers(${name} REUSE_FROM precompiled_tests)
    if(WIN32)
        # Narrow calls speak UTF-8 in the tests as they do in the agent.
        target_sources(${name} PRIVATE ${CMAKE_SOURCE_DIR}/cmake/TestProgram.rc)
    endif()
    if(CMAKE_CROSSCOMPILING)
        set(command ${CMAKE_SOURCE_DIR}/scripts/run-wine-test.sh $<TARGET_FILE:${name}>)
    else()
        set(command ${name})
    endif()
    add_test(NAME ${name} COMMAND ${command} WORKING_DIRECTORY ${CMAKE_BINARY_DIR})
    set_tests_properties(${name} PROPERTIES TIMEOUT 120 LABELS "$<$<BOOL:${arg_PORTABLE}>:portable>")
endfunction()
