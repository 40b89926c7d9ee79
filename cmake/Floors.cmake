# What every target of ours is compiled with; never applied to a directory as a whole.
add_library(ferrow_flags INTERFACE)
target_compile_options(ferrow_flags INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror)
target_compile_definitions(ferrow_flags INTERFACE
    QT_NO_CAST_TO_ASCII QT_NO_FOREACH QT_USE_QSTRINGBUILDER
    $<$<CONFIG:Release>:NDEBUG>)
if(FERROW_SANITIZE)
    target_compile_options(ferrow_flags INTERFACE -fsanitize=${FERROW_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
    target_link_options(ferrow_flags INTERFACE -fsanitize=${FERROW_SANITIZE})
    target_compile_definitions(ferrow_flags INTERFACE QT_FORCE_ASSERTS)
    # The sanitizers' own code makes g++ 12 see uninitialised values in std::optional where there are none.
    target_compile_options(ferrow_flags INTERFACE -Wno-maybe-uninitialized)
endif()
if(CMAKE_BUILD_TYPE STREQUAL "Release")
    target_compile_options(ferrow_flags INTERFACE -fstack-protector-strong -D_FORTIFY_SOURCE=2)
    if(NOT APPLE)
        target_compile_options(ferrow_flags INTERFACE -fcf-protection)
        target_link_options(ferrow_flags INTERFACE -Wl,-z,relro,-z,now)
    endif()
endif()

# add_floor(name SOURCES ... STANDS_ON ...)
# A floor is a static library whose only public include folder is its own, so that a header of a floor
# above it is not even found.
function(add_floor name)
    cmake_parse_arguments(FLOOR "" "" "SOURCES;STANDS_ON" ${ARGN})
    set(target ferrow_${name})
    add_library(${target} STATIC ${FLOOR_SOURCES})
    target_include_directories(${target} PUBLIC ${CMAKE_CURRENT_SOURCE_DIR})
    target_link_libraries(${target} PUBLIC ${FLOOR_STANDS_ON} PRIVATE ferrow_flags)
    set_target_properties(${target} PROPERTIES AUTOMOC ON)
endfunction()

# add_ferrow_program(name SOURCES ... STANDS_ON ...)
function(add_ferrow_program name)
    cmake_parse_arguments(PROGRAM "" "" "SOURCES;STANDS_ON" ${ARGN})
    add_executable(${name} ${PROGRAM_SOURCES})
    target_link_libraries(${name} PRIVATE ${PROGRAM_STANDS_ON} ferrow_flags)
    set_target_properties(${name} PROPERTIES AUTOMOC ON)
    if(CMAKE_BUILD_TYPE STREQUAL "Release" AND NOT APPLE)
        target_link_options(${name} PRIVATE -pie)
    endif()
endfunction()

# add_ferrow_test(name SOURCES ... STANDS_ON ...) becomes a CTest entry that runs without a display.
function(add_ferrow_test name)
    cmake_parse_arguments(TEST "" "" "SOURCES;STANDS_ON" ${ARGN})
    add_ferrow_program(${name} SOURCES ${TEST_SOURCES} STANDS_ON ${TEST_STANDS_ON} Qt6::Test)
    target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR}/tests/common)
    target_compile_definitions(${name} PRIVATE FERROW_RESOURCES="${CMAKE_SOURCE_DIR}/resources")
    add_test(NAME ${name} COMMAND ${name})
    set_tests_properties(${name} PROPERTIES TIMEOUT 120
        ENVIRONMENT "QT_QPA_PLATFORM=offscreen;LSAN_OPTIONS=suppressions=${CMAKE_SOURCE_DIR}/tests/common/lsan.supp;UBSAN_OPTIONS=print_stacktrace=1")
endfunction()
