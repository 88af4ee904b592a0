# kr_set_test_environment(<test>): what every test runs in. No display is needed; GUI tests use Qt's
# offscreen platform.
function(kr_set_test_environment test)
    set(environment QT_QPA_PLATFORM=offscreen LC_ALL=C.UTF-8 TZ=UTC)
    if(KRHVC_SANITIZERS)
        # Qt's platform plug-ins keep no frame pointers; the slow unwinder finds through them.
        list(
            APPEND
            environment
            "LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/lsan.supp:print_suppressions=0:fast_unwind_on_malloc=0"
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

# kr_add_test(<unit> [libraries...]): builds tst_<unit>.cpp of the current folder and registers it.
function(kr_add_test unit)
    set(target tst_${unit})
    add_executable(${target} ${target}.cpp)
    target_link_libraries(${target} PRIVATE Qt5::Test krhvc_warnings ${ARGN})
    add_test(NAME ${target} COMMAND ${target})
    kr_set_test_environment(${target})
endfunction()
