# What every target of ours is compiled with. Link it PRIVATE; nothing of it reaches a host.
add_library(krhvc_warnings INTERFACE)

target_compile_definitions(
    krhvc_warnings
    INTERFACE
        QT_NO_CAST_FROM_ASCII
        QT_NO_CAST_TO_ASCII
        QT_NO_FOREACH
        QT_NO_NARROWING_CONVERSIONS_IN_CONNECT
        QT_NO_URL_CAST_FROM_STRING
        QT_USE_QSTRINGBUILDER
        QT_DEPRECATED_WARNINGS
        QT_DISABLE_DEPRECATED_BEFORE=0x050c00
        $<$<BOOL:${KRHVC_FORCE_ASSERTS}>:QT_FORCE_ASSERTS>
)

if(MSVC)
    target_compile_options(
        krhvc_warnings INTERFACE /W4 /utf-8 /permissive- /Zc:__cplusplus
                                 $<$<BOOL:${KRHVC_WERROR}>:/WX>
    )
else()
    target_compile_options(
        krhvc_warnings
        INTERFACE
            -Wall
            -Wextra
            -Wpedantic
            -Wshadow
            -Wnon-virtual-dtor
            -Woverloaded-virtual
            -Wcast-align
            -Wconversion
            -Wno-sign-conversion
            -Wformat=2
            $<$<BOOL:${KRHVC_WERROR}>:-Werror>
            # Qt's logging macros
            $<$<CXX_COMPILER_ID:Clang>:-Wno-gnu-zero-variadic-macro-arguments>
            # GCC 12 suspects Qt's own containers of these when it optimises.
            $<$<CXX_COMPILER_ID:GNU>:-Wno-stringop-overflow>
            $<$<CXX_COMPILER_ID:GNU>:-Wno-stringop-overread>
            # One symbol of that kind, of which the standard library has some, and the plug-in could
            # never be unloaded. Nothing here shares such a symbol with the host.
            $<$<CXX_COMPILER_ID:GNU>:-fno-gnu-unique>
    )
endif()

if(KRHVC_SANITIZERS)
    target_compile_options(
        krhvc_warnings INTERFACE -fsanitize=${KRHVC_SANITIZERS} -fno-omit-frame-pointer
                                 -fno-sanitize-recover=all
    )
    target_link_options(krhvc_warnings INTERFACE -fsanitize=${KRHVC_SANITIZERS})
endif()

if(KRHVC_FUZZERS)
    target_compile_options(krhvc_warnings INTERFACE -fsanitize=fuzzer-no-link)
endif()
