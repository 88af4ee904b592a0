# cmake -DEXPECTED=<regular expression> -P run.cmake -- PROGRAM [ARGUMENT...]
# Runs a program; fails when that fails or prints nothing that matches.
cmake_minimum_required(VERSION 3.20)

set(command)
set(is_command OFF)
math(EXPR last "${CMAKE_ARGC} - 1")
foreach(index RANGE ${last})
    if(is_command)
        list(APPEND command "${CMAKE_ARGV${index}}")
    elseif(CMAKE_ARGV${index} STREQUAL "--")
        set(is_command ON)
    endif()
endforeach()

execute_process(
    COMMAND ${command}
    RESULT_VARIABLE result
    OUTPUT_VARIABLE output ECHO_OUTPUT_VARIABLE
)
if(NOT result EQUAL 0)
    message(FATAL_ERROR "Ended with ${result}")
elseif(NOT output MATCHES "${EXPECTED}")
    message(FATAL_ERROR "Printed nothing that matches ${EXPECTED}")
endif()
