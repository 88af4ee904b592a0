# What an archive holds: plugin/ for the integrator, demo/ to try it out, devel/ to build a host.
include(CMakePackageConfigHelpers)

install(TARGETS KrHvcP2 LIBRARY DESTINATION plugin COMPONENT plugin)
install(FILES packaging/setting.ini.sample packaging/INSTALL.txt CHANGELOG.md DESTINATION plugin COMPONENT plugin)

# The demonstration is complete in itself, plug-in included.
install(TARGETS KrHvcP2 LIBRARY DESTINATION demo COMPONENT demo)
install(TARGETS krhvc_player krhvc_simulator RUNTIME DESTINATION demo COMPONENT demo)
install(DIRECTORY demo/player/stages DESTINATION demo COMPONENT demo)
install(DIRECTORY demo/simulator/scenarios DESTINATION demo COMPONENT demo)
install(FILES demo/player/README.md DESTINATION demo RENAME stage-player.md COMPONENT demo)
install(FILES demo/simulator/README.md DESTINATION demo RENAME sensor-simulator.md COMPONENT demo)

if(MINGW)
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
    foreach(library libgcc_s_seh-1.dll libstdc++-6.dll libwinpthread-1.dll)
        execute_process(
            COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${library}
            OUTPUT_VARIABLE library_path OUTPUT_STRIP_TRAILING_WHITESPACE
        )
        install(FILES ${library_path} DESTINATION demo COMPONENT demo)
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

set(CPACK_PACKAGE_NAME KrHvcP2)
set(CPACK_PACKAGE_VENDOR "${KRHVC_VENDOR}")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_COMPONENTS_ALL plugin demo devel)
set(CPACK_ARCHIVE_COMPONENT_INSTALL OFF)
if(WIN32)
    set(CPACK_GENERATOR ZIP)
    set(CPACK_SYSTEM_NAME win64)
else()
    set(CPACK_GENERATOR TGZ)
    string(TOLOWER "${CMAKE_SYSTEM_NAME}-${CMAKE_SYSTEM_PROCESSOR}" CPACK_SYSTEM_NAME)
endif()
include(CPack)
