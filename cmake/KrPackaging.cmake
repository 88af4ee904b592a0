# What an archive holds: plugin/ for the integrator, docs/ for whoever sets up and looks after screens, demo/ to try
# it out, devel/ to build a host.
include(CMakePackageConfigHelpers)

# install_text(<file> <component>): with the line ends that the system's editors expect.
function(install_text file component)
    set(newlines UNIX)
    if(WIN32)
        set(newlines WIN32)
    endif()
    configure_file(${file} ${PROJECT_BINARY_DIR}/${file} @ONLY NEWLINE_STYLE ${newlines})
    install(FILES ${PROJECT_BINARY_DIR}/${file} DESTINATION ${component} COMPONENT ${component})
endfunction()

# install_page(<file> <component> [<name>]): with its links as they are in an archive.
function(install_page file component)
    get_filename_component(name ${file} NAME)
    if(ARGC GREATER 2)
        set(name ${ARGV2})
    endif()
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${file})
    file(READ ${file} text)
    string(REPLACE "](../demo/player/README.md" "](stage-player.md" text "${text}")
    string(REPLACE "](../demo/simulator/README.md" "](sensor-simulator.md" text "${text}")
    string(REPLACE "](../player/README.md" "](stage-player.md" text "${text}")
    string(REPLACE "](../simulator/README.md" "](sensor-simulator.md" text "${text}")
    string(REPLACE "](../../docs/" "](" text "${text}")
    if(NOT component STREQUAL docs)
        string(REGEX REPLACE "\\]\\(([a-z0-9-]+\\.md)" "](../docs/\\1" text "${text}")
    endif()
    file(WRITE ${PROJECT_BINARY_DIR}/pages/${name} "${text}")
    install(FILES ${PROJECT_BINARY_DIR}/pages/${name} DESTINATION ${component} COMPONENT ${component})
endfunction()

# What a host has to be built with, for INSTALL.txt.
set(KRHVC_BUILT_WITH "Qt ${Qt5_VERSION} and ${CMAKE_CXX_COMPILER_ID} ${CMAKE_CXX_COMPILER_VERSION}")
if(MINGW)
    string(APPEND KRHVC_BUILT_WITH " (MinGW-w64)")
endif()

install(TARGETS KrHvcP2 LIBRARY DESTINATION plugin COMPONENT plugin)
foreach(text IN ITEMS packaging/setting.ini.sample packaging/INSTALL.txt CHANGELOG.md)
    install_text(${text} plugin)
endforeach()

# The demonstration is complete in itself, plug-in included.
install(TARGETS KrHvcP2 LIBRARY DESTINATION demo COMPONENT demo)
install(TARGETS krhvc_player krhvc_simulator krhvc_hvcp2 RUNTIME DESTINATION demo COMPONENT demo)
install(DIRECTORY demo/player/stages demo/player/recordings DESTINATION demo COMPONENT demo)
install(DIRECTORY demo/simulator/scenarios DESTINATION demo COMPONENT demo)

foreach(page IN ITEMS how-it-decides install-and-tune operate privacy reference hvcp2)
    install_page(docs/${page}.md docs)
endforeach()
install_page(demo/player/README.md docs stage-player.md)
install_page(demo/simulator/README.md docs sensor-simulator.md)
foreach(picture IN ITEMS coverage detection-content report screen-settings stage-player)
    install(FILES docs/${picture}.png DESTINATION docs COMPONENT docs)
endforeach()

if(WIN32 AND NOT CMAKE_BUILD_TYPE STREQUAL Debug) # that one needs Qt's debug libraries
    # Qt and the compiler's own libraries, so that the demonstration runs on a bare machine.
    get_target_property(qt_core_dll Qt5::Core IMPORTED_LOCATION_RELEASE)
    get_filename_component(qt_bin ${qt_core_dll} DIRECTORY)
    get_filename_component(qt_root ${qt_bin} DIRECTORY)
    foreach(module Core Gui Svg Widgets)
        install(FILES ${qt_bin}/Qt5${module}.dll DESTINATION demo COMPONENT demo)
    endforeach()
    install(FILES ${qt_root}/plugins/platforms/qwindows.dll ${qt_root}/plugins/platforms/qoffscreen.dll
            DESTINATION demo/platforms COMPONENT demo
    )
    install(FILES ${qt_root}/plugins/imageformats/qsvg.dll DESTINATION demo/imageformats COMPONENT demo)
    install(FILES ${qt_root}/plugins/styles/qwindowsvistastyle.dll DESTINATION demo/styles COMPONENT demo)
    if(MINGW)
        foreach(library libgcc_s_seh-1.dll libstdc++-6.dll libwinpthread-1.dll)
            execute_process(
                COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${library}
                OUTPUT_VARIABLE library_path OUTPUT_STRIP_TRAILING_WHITESPACE
            )
            install(FILES ${library_path} DESTINATION demo COMPONENT demo)
        endforeach()
    else()
        set(CMAKE_INSTALL_SYSTEM_RUNTIME_DESTINATION demo)
        set(CMAKE_INSTALL_SYSTEM_RUNTIME_COMPONENT demo)
        include(InstallRequiredSystemLibraries)
    endif()
    install_text(packaging/THIRD-PARTY.txt demo)
    foreach(license IN ITEMS GPL-3 LGPL-3)
        # Where a Debian keeps the texts; elsewhere Qt's own setup has put them on the machine.
        install(FILES /usr/share/common-licenses/${license} DESTINATION demo COMPONENT demo
                RENAME ${license}.txt OPTIONAL
        )
    endforeach()
endif()

set(host_headers ${KRHVC_HOST_HEADERS})
list(TRANSFORM host_headers PREPEND host/)
install(FILES ${host_headers} DESTINATION devel/include/KrHvcP2/host COMPONENT devel)
configure_package_config_file(
    cmake/KrHvcP2HostConfig.cmake.in ${PROJECT_BINARY_DIR}/KrHvcP2HostConfig.cmake
    INSTALL_DESTINATION devel/lib/cmake/KrHvcP2Host
)
write_basic_package_version_file(
    ${PROJECT_BINARY_DIR}/KrHvcP2HostConfigVersion.cmake COMPATIBILITY SameMajorVersion ARCH_INDEPENDENT
)
install(
    FILES ${PROJECT_BINARY_DIR}/KrHvcP2HostConfig.cmake ${PROJECT_BINARY_DIR}/KrHvcP2HostConfigVersion.cmake
    DESTINATION devel/lib/cmake/KrHvcP2Host
    COMPONENT devel
)

install_page(docs/host-integration.md devel)
install(FILES tests/packaging/host/main.cpp tests/packaging/host/CMakeLists.txt DESTINATION devel/example
        COMPONENT devel
)

set(CPACK_PACKAGE_NAME KrHvcP2)
set(CPACK_PACKAGE_VENDOR "${KRHVC_VENDOR}")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_COMPONENTS_ALL plugin docs demo devel)
set(CPACK_ARCHIVE_COMPONENT_INSTALL OFF)
if(WIN32)
    set(CPACK_GENERATOR ZIP)
    if(CMAKE_SIZEOF_VOID_P EQUAL 8)
        set(CPACK_SYSTEM_NAME win64)
    else()
        set(CPACK_SYSTEM_NAME win32)
    endif()
else()
    set(CPACK_GENERATOR TGZ)
    string(TOLOWER "${CMAKE_SYSTEM_NAME}-${CMAKE_SYSTEM_PROCESSOR}" CPACK_SYSTEM_NAME)
endif()
include(CPack)
