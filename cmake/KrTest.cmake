# kr_add_test(<unit> [libraries...]): builds tst_<unit>.cpp of the current folder and registers it.
# Runs without a display; GUI tests use Qt's offscreen platform.
function(kr_add_test unit)
    set(target tst_${unit})
    add_executable(${target} ${target}.cpp)
    target_link_libraries(${target} PRIVATE Qt5::Test krhvc_warnings ${ARGN})
    add_test(NAME ${target} COMMAND ${target})
    set(sanitizer_options "")
    if(KRHVC_SANITIZERS)
        # Qt's platform plug-ins keep no frame pointers; the slow unwinder finds through them.
        set(sanitizer_options
            "LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/lsan.supp:print_suppressions=0:fast_unwind_on_malloc=0"
            "UBSAN_OPTIONS=print_stacktrace=1"
        )
    endif()
    set_tests_properties(
        ${target} PROPERTIES TIMEOUT 300 ENVIRONMENT
                             "QT_QPA_PLATFORM=offscreen;LC_ALL=C.UTF-8;TZ=UTC;${sanitizer_options}"
    )
endfunction()
