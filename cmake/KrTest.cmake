# kr_set_test_environment(<test>): what every test runs in. No display is needed; GUI tests use Qt's
# offscreen platform.
function(kr_set_test_environment test)
    set(environment QT_QPA_PLATFORM=offscreen LC_ALL=C.UTF-8 TZ=UTC)
    if(KRHVC_SANITIZERS)
        list(
            APPEND
            environment
            "LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/lsan.supp:print_suppressions=0"
            "UBSAN_OPTIONS=print_stacktrace=1"
            "TSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/tsan.supp"
        )
    endif()
    set_tests_properties(${test} PROPERTIES TIMEOUT 300 ENVIRONMENT "${environment}")
endfunction()

# kr_use_file(<target> <NAME> <program>): builds <program> before <target>, which knows its file as
# KRHVC_<NAME>_FILE; whoever links <target> does so, too.
function(kr_use_file target name program)
    add_dependencies(${target} ${program})
    target_compile_definitions(${target} PUBLIC KRHVC_${name}_FILE="$<TARGET_FILE:${program}>")
endfunction()

# What every test program is compiled with.
add_library(krhvc_testoptions INTERFACE)
target_link_libraries(krhvc_testoptions INTERFACE krhvc_warnings)
if(NOT MSVC)
    # Optimising a test takes longer than it then saves.
    target_compile_options(krhvc_testoptions INTERFACE -O0)
endif()

# The headers that all tests begin with, compiled once. Those of Qt Test are none of them: they differ with
# the libraries of a test.
file(GENERATE OUTPUT ${PROJECT_BINARY_DIR}/testheaders.cpp CONTENT "")
add_library(krhvc_testheaders STATIC ${PROJECT_BINARY_DIR}/testheaders.cpp)
target_link_libraries(krhvc_testheaders PRIVATE Qt5::Core krhvc_testoptions)
target_precompile_headers(krhvc_testheaders PRIVATE <QtCore>)
set_target_properties(krhvc_testheaders PROPERTIES AUTOMOC OFF)

# kr_add_test(<unit> [libraries...]): builds tst_<unit>.cpp of the current folder and registers it.
function(kr_add_test unit)
    set(target tst_${unit})
    add_executable(${target} ${target}.cpp)
    target_link_libraries(${target} PRIVATE Qt5::Test krhvc_testoptions ${ARGN})
    target_precompile_headers(${target} REUSE_FROM krhvc_testheaders)
    add_test(NAME ${target} COMMAND ${target})
    kr_set_test_environment(${target})
endfunction()

# kr_start_sensor_program(<tests>...): for tests that start it. Each ends every other program of its name, so
# they run one after another; and they begin first, for together they take as long as all others.
function(kr_start_sensor_program)
    set_tests_properties(${ARGN} PROPERTIES RESOURCE_LOCK "HvcCon.exe" COST 1000)
endfunction()
