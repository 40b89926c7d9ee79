# What every target of ours is compiled with; never applied to a directory as a whole.
add_library(ferrow_flags INTERFACE)
target_compile_options(ferrow_flags INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror)
target_compile_definitions(ferrow_flags INTERFACE
    QT_NO_CAST_TO_ASCII QT_NO_FOREACH QT_USE_QSTRINGBUILDER
    $<$<CONFIG:Release>:NDEBUG>)
if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    # The standard library's own stable_sort calls what it has deprecated.
    target_compile_options(ferrow_flags INTERFACE -Wno-deprecated-declarations)
endif()
if(FERROW_SANITIZE)
    target_compile_options(ferrow_flags INTERFACE -fsanitize=${FERROW_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
    target_link_options(ferrow_flags INTERFACE -fsanitize=${FERROW_SANITIZE})
    target_compile_definitions(ferrow_flags INTERFACE QT_FORCE_ASSERTS)
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        # The sanitizers' own code makes g++ 12 see uninitialised values in std::optional where there are none.
        target_compile_options(ferrow_flags INTERFACE -Wno-maybe-uninitialized)
    endif()
endif()
# What makes a fault of ours harder to exploit; scripts/check-hardening looks for it in the finished programs. Control
# flow integrity is what g++ has of it, marks for the processor; clang's own needs link-time optimisation with clang.
add_library(ferrow_hardening INTERFACE)
target_compile_options(ferrow_hardening INTERFACE
    -fstack-protector-strong -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=3 -D_GLIBCXX_ASSERTIONS -ftrivial-auto-var-init=zero)
if(NOT APPLE)
    target_compile_options(ferrow_hardening INTERFACE -fstack-clash-protection)
    target_link_options(ferrow_hardening INTERFACE -pie -Wl,-z,relro,-z,now,-z,noexecstack,-z,separate-code)
    if(CMAKE_SYSTEM_PROCESSOR STREQUAL "x86_64")
        target_compile_options(ferrow_hardening INTERFACE -fcf-protection)
    endif()
endif()
if(CMAKE_BUILD_TYPE STREQUAL "Release")
    target_link_libraries(ferrow_flags INTERFACE ferrow_hardening)
endif()

# What nearly every file includes, compiled once. Another preset compiles without it, so that no file comes to depend on
# what it does not include itself.
if(FERROW_PRECOMPILED_HEADERS)
    function(add_precompiled_headers name)
        cmake_parse_arguments(HEADERS "" "" "HEADERS;STANDS_ON" ${ARGN})
        file(WRITE ${CMAKE_BINARY_DIR}/precompiled/${name}.cpp "")
        add_library(${name} OBJECT ${CMAKE_BINARY_DIR}/precompiled/${name}.cpp)
        target_link_libraries(${name} PRIVATE ${HEADERS_STANDS_ON} ferrow_flags)
        target_precompile_headers(${name} PRIVATE ${HEADERS_HEADERS})
        if(CMAKE_CXX_COMPILER_ID MATCHES "Clang") # a time inside would keep ccache from knowing it again
            target_compile_options(${name} PRIVATE -Xclang -fno-pch-timestamp)
        endif()
    endfunction()
    set(core_headers <QAbstractTableModel> <QCoroFuture> <QCoroTask> <QDir> <QFile> <QHash> <QList> <QObject> <QPromise>
        <QString> <QStringList> <QTimer> <QVariant> <algorithm> <chrono> <functional> <memory> <optional>)
    add_precompiled_headers(ferrow_core_headers HEADERS ${core_headers} STANDS_ON Qt6::Core QCoro6::Core)
    add_precompiled_headers(ferrow_widget_headers HEADERS ${core_headers} <QCheckBox> <QComboBox> <QDialog> <QHeaderView>
        <QLabel> <QLineEdit> <QPushButton> <QTableView> <QVBoxLayout> STANDS_ON Qt6::Widgets QCoro6::Core)
endif()

function(use_precompiled_headers target headers)
    if(FERROW_PRECOMPILED_HEADERS)
        target_precompile_headers(${target} REUSE_FROM ${headers})
    endif()
endfunction()

# Not -fsanitize=fuzzer-no-link, with which no precompiled header could be shared.
set(fuzzer_coverage -fsanitize-coverage=inline-8bit-counters,pc-table)

# add_floor(name SOURCES ... STANDS_ON ...)
# A floor is a static library whose only public include folder is its own, so that a header of a floor above it is not
# even found. It stands only on floors that have been added before it, so no two can stand on each other.
function(add_floor name)
    cmake_parse_arguments(FLOOR "" "" "SOURCES;STANDS_ON" ${ARGN})
    set(target ferrow_${name})
    foreach(below IN LISTS FLOOR_STANDS_ON)
        if(below MATCHES "^ferrow_" AND NOT TARGET ${below})
            message(FATAL_ERROR "The floor ${name} cannot stand on ${below}, which is not below it.")
        endif()
    endforeach()
    add_library(${target} STATIC ${FLOOR_SOURCES})
    target_include_directories(${target} PUBLIC ${CMAKE_CURRENT_SOURCE_DIR})
    target_link_libraries(${target} PUBLIC ${FLOOR_STANDS_ON} PRIVATE ferrow_flags)
    set_target_properties(${target} PROPERTIES AUTOMOC ON)
    if(FERROW_FUZZERS AND NOT name MATCHES "^(ui_.*|app|demo)$") # what the fuzzers find their way through
        target_compile_options(${target} PRIVATE ${fuzzer_coverage})
    endif()
    if(name MATCHES "^ui_")
        use_precompiled_headers(${target} ferrow_widget_headers)
    elseif(NOT name STREQUAL demo)
        use_precompiled_headers(${target} ferrow_core_headers)
    endif()
endfunction()

# add_ferrow_program(name SOURCES ... STANDS_ON ...)
function(add_ferrow_program name)
    cmake_parse_arguments(PROGRAM "" "" "SOURCES;STANDS_ON" ${ARGN})
    add_executable(${name} ${PROGRAM_SOURCES})
    target_link_libraries(${name} PRIVATE ${PROGRAM_STANDS_ON} ferrow_flags)
    set_target_properties(${name} PROPERTIES AUTOMOC ON)
    if(FERROW_SANITIZE STREQUAL thread)
        target_sources(${name} PRIVATE ${CMAKE_SOURCE_DIR}/cmake/tsan/QtSynchronization.cpp)
    endif()
endfunction()

set(test_environment "LSAN_OPTIONS=suppressions=${CMAKE_SOURCE_DIR}/tests/common/lsan.supp;UBSAN_OPTIONS=print_stacktrace=1")

# add_ferrow_test(name [DISPLAY] SOURCES ... STANDS_ON ...) becomes a CTest entry that runs without a display, or on an X server
# of its own; the latter not where there is no xvfb-run.
function(add_ferrow_test name)
    cmake_parse_arguments(TEST "DISPLAY" "" "SOURCES;STANDS_ON" ${ARGN})
    add_ferrow_program(${name} SOURCES ${TEST_SOURCES} STANDS_ON ${TEST_STANDS_ON} Qt6::Test)
    target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR}/tests/common)
    if(TEST_STANDS_ON MATCHES "ferrow_ui_")
        target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR}/tests/ui)
        use_precompiled_headers(${name} ferrow_widget_headers)
    elseif(NOT "ferrow_demo" IN_LIST TEST_STANDS_ON)
        use_precompiled_headers(${name} ferrow_core_headers)
    endif()
    target_compile_definitions(${name} PRIVATE FERROW_RESOURCES="${CMAKE_SOURCE_DIR}/resources")
    if(TEST_DISPLAY)
        find_program(FERROW_XVFB_RUN xvfb-run)
        if(NOT FERROW_XVFB_RUN)
            message(STATUS "There is no xvfb-run: ${name} is left out.")
            return()
        endif()
        # Without -noreset the server starts anew after its last client, and xvfb-run, told of it while it cleans up,
        # fails. The connection to a message bus would be a leak to the address sanitizer.
        add_test(NAME ${name} COMMAND ${FERROW_XVFB_RUN} --auto-servernum
            "--server-args=-screen 0 1280x1024x24 -noreset" $<TARGET_FILE:${name}>)
        set_tests_properties(${name} PROPERTIES TIMEOUT 300 RESOURCE_LOCK display
            ENVIRONMENT "QT_QPA_PLATFORM=xcb;DBUS_SESSION_BUS_ADDRESS=disabled:;${test_environment}")
        return()
    endif()
    add_test(NAME ${name} COMMAND ${name})
    set_tests_properties(${name} PROPERTIES TIMEOUT 120 ENVIRONMENT "QT_QPA_PLATFORM=offscreen;${test_environment}")
endfunction()

# add_ferrow_fuzzer(name STANDS_ON ...) becomes the program fuzz_<name>, of fuzz_<name>.cpp; its seeds are in corpus/<name>.
function(add_ferrow_fuzzer name)
    cmake_parse_arguments(FUZZER "" "" "STANDS_ON" ${ARGN})
    set(target fuzz_${name})
    add_ferrow_program(${target} SOURCES ${target}.cpp STANDS_ON ${FUZZER_STANDS_ON})
    target_include_directories(${target} PRIVATE ${CMAKE_SOURCE_DIR}/tests/common)
    target_compile_options(${target} PRIVATE ${fuzzer_coverage})
    target_link_options(${target} PRIVATE -fsanitize=fuzzer)
    add_dependencies(fuzzers ${target})
endfunction()
