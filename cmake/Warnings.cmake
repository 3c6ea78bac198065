# Every warning flag of the project, and the reason of each exception.
add_library(morvane_warnings INTERFACE)
if(MSVC)
    target_compile_options(morvane_warnings INTERFACE
        /W4 /WX /permissive- /utf-8 /Zc:__cplusplus /Zc:preprocessor
        /wd4127  # conditions that are constant in one use of a macro, or on one system
        /wd4324) # padding added by alignas is what alignas asks for
else()
    target_compile_options(morvane_warnings INTERFACE
        -Wall -Wextra -Wpedantic -Werror
        -Wshadow -Wconversion -Wsign-conversion -Wold-style-cast -Wcast-qual -Wcast-align
        -Wnon-virtual-dtor -Woverloaded-virtual -Wformat=2 -Wimplicit-fallthrough -Wundef
        -Wextra-semi -Wunused)
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        target_compile_options(morvane_warnings INTERFACE -Wduplicated-cond -Wduplicated-branches -Wlogical-op)
    endif()
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_BUILD_TYPE STREQUAL "Release" AND NOT MINGW)
        # GCC 12 at -O3 sees overlapping copies in a literal + a string. PackageTool for Linux is built so.
        target_compile_options(morvane_warnings INTERFACE -Wno-restrict)
    endif()
    if(MINGW)
        # GetProcAddress returns every function as one type, which has to be cast.
        target_compile_options(morvane_warnings INTERFACE -Wno-cast-function-type)
    endif()
endif()
