# Packs what is built in BUILD as version VERSION, unpacks it to DIRECTORY and looks for what users need.
cmake_minimum_required(VERSION 3.21)

file(REMOVE_RECURSE ${DIRECTORY})
execute_process(
    COMMAND ${CPACK} --config ${BUILD}/CPackConfig.cmake -B ${DIRECTORY}/packed COMMAND_ERROR_IS_FATAL ANY
)
file(GLOB archives ${DIRECTORY}/packed/KrHvcP2-*)
file(ARCHIVE_EXTRACT INPUT ${archives} DESTINATION ${DIRECTORY})

get_filename_component(name ${archives} NAME)
if(name STREQUAL "KrHvcP2-${VERSION}-win64.zip")
    set(plugin KrHvcP2.dll)
    set(system_files
        demo/KrStagePlayer.exe
        demo/hvcp2.exe
        demo/Qt5Core.dll
        demo/Qt5Gui.dll
        demo/Qt5Svg.dll
        demo/Qt5Widgets.dll
        demo/platforms/qwindows.dll
        demo/platforms/qoffscreen.dll
        demo/imageformats/qsvg.dll
        demo/styles/qwindowsvistastyle.dll
        demo/THIRD-PARTY.txt
    )
elseif(name MATCHES "^KrHvcP2-${VERSION}-linux-[a-z0-9_]+\\.tar\\.gz$")
    set(plugin KrHvcP2.so)
    set(system_files demo/KrStagePlayer demo/hvcp2)
else()
    message(FATAL_ERROR "Unexpected archive: ${name}")
endif()

string(REGEX REPLACE "\\.(zip|tar\\.gz)$" "" root ${name})
file(GLOB entries RELATIVE ${DIRECTORY}/${root} ${DIRECTORY}/${root}/*)
if(NOT entries STREQUAL "demo;devel;docs;plugin")
    message(FATAL_ERROR "Unexpected components: ${entries}")
endif()
foreach(
    file IN
    ITEMS plugin/${plugin}
          plugin/INSTALL.txt
          plugin/setting.ini.sample
          demo/${plugin}
          demo/HvcCon.exe
          demo/stages/shop-window.json
          demo/recordings/afternoon.txt
          demo/scenarios/everyday.json
          docs/how-it-decides.md
          docs/hvcp2.md
          docs/install-and-tune.md
          docs/operate.md
          docs/privacy.md
          docs/reference.md
          docs/sensor-simulator.md
          docs/stage-player.md
          devel/host-integration.md
          devel/example/main.cpp
          devel/example/CMakeLists.txt
          devel/include/KrHvcP2/host/KrPluginCommonInterface.h
          devel/include/KrHvcP2/host/KrPluginExtScreenInterface.h
          devel/include/KrHvcP2/host/KrPluginGraphicsItem.h
          devel/include/KrHvcP2/host/KrPluginGuiInterface.h
          devel/include/KrHvcP2/host/KrPluginKeys.h
          devel/include/KrHvcP2/host/KrPluginStage.h
          devel/lib/cmake/KrHvcP2Host/KrHvcP2HostConfig.cmake
    LISTS system_files
)
    if(NOT EXISTS ${DIRECTORY}/${root}/${file})
        message(SEND_ERROR "Missing: ${file}")
    endif()
endforeach()
# What a document shows or leads to is in the archive, too.
file(GLOB documents ${DIRECTORY}/${root}/*/*.md)
foreach(document IN LISTS documents)
    get_filename_component(folder ${document} DIRECTORY)
    file(READ ${document} text)
    string(REPLACE "](" "link=" text "${text}") # no list has a lone bracket in it
    string(REGEX MATCHALL "link=[^)#]+" links "${text}")
    list(TRANSFORM links REPLACE "^link=" "")
    list(FILTER links EXCLUDE REGEX "^https?:")
    foreach(link IN LISTS links)
        if(NOT EXISTS ${folder}/${link})
            message(SEND_ERROR "${document} leads to ${link}, which is missing.")
        endif()
    endforeach()
endforeach()
# The simulator must not be taken for the sensor program.
if(EXISTS ${DIRECTORY}/${root}/plugin/HvcCon.exe)
    message(SEND_ERROR "The simulator stands beside the plug-in that goes into a host.")
endif()

foreach(component IN LISTS entries)
    file(RENAME ${DIRECTORY}/${root}/${component} ${DIRECTORY}/${component})
endforeach()
