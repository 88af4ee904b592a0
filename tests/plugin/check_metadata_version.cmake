# Fills TEMPLATE in for a later version of the project and looks at the metadata's own.
cmake_minimum_required(VERSION 3.20)

set(PROJECT_VERSION 9.8.7)
configure_file(${TEMPLATE} ${OUTPUT} @ONLY)
file(READ ${OUTPUT} metadata)
foreach(key IN ITEMS Version CompatVersion)
    string(JSON version GET "${metadata}" ${key})
    if(NOT version STREQUAL "1.0.0")
        message(FATAL_ERROR "${key} is ${version}")
    endif()
endforeach()
