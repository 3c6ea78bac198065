# cmake --build --preset release --target package writes the archive that a studio gets. The licence texts and versions in
# it are those of the packages installed here, found by what the linker read for each program.
if(NOT MINGW OR NOT CMAKE_BUILD_TYPE STREQUAL "Release" OR MORVANE_ASSERT_DIALOGS)
    return()
endif()

set(programs MorvaneCrashReporter PackageTool)
foreach(program IN LISTS programs)
    target_link_options(${program} PRIVATE -Wl,--dependency-file,${CMAKE_BINARY_DIR}/${program}.exe.linked)
endforeach()

# Debian's own Python: the compressed bytes depend on the zlib that it is built with.
add_custom_target(package
    COMMAND /usr/bin/python3 ${CMAKE_SOURCE_DIR}/scripts/release/archive.py
        ${CMAKE_BINARY_DIR} ${PROJECT_VERSION} ${MORVANE_CHANGELIST}
    DEPENDS ${programs}
    COMMENT "Writing the release archive"
    VERBATIM)
