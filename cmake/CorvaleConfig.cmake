# find_package(Corvale) of an installed Corvale: CORVALE_RUN, the program corvale-run, and corvale_add_test().
# docs/continuous-integration.md describes both.
find_program(CORVALE_RUN corvale-run
    HINTS ${CMAKE_CURRENT_LIST_DIR}/../../../bin
    DOC "corvale-run, which checks programs of OpenGL ES")
if(NOT CORVALE_RUN)
    set(Corvale_FOUND FALSE)
    set(Corvale_NOT_FOUND_MESSAGE "corvale-run is not beside this file, nor in PATH: set CORVALE_RUN to it.")
    return()
endif()

# A test that runs a program and fails when it makes errors:
#   corvale_add_test(NAME <name> COMMAND <target or path> [argument...]
#       [PROFILES <name>...] [ALL_PROFILES] [JOBS <number>] [FAIL_ON error|warning|message|never] [BASELINE <file>]
#       [REPORTS <kind=file>...] [SESSION <file>] [TIMEOUT <seconds>] [FRAMES <number>] [HEADLESS]
#       [WORKING_DIRECTORY <folder>])
function(corvale_add_test)
    cmake_parse_arguments(PARSE_ARGV 0 ARG "ALL_PROFILES;HEADLESS"
        "NAME;JOBS;FAIL_ON;BASELINE;SESSION;TIMEOUT;FRAMES;WORKING_DIRECTORY" "COMMAND;PROFILES;REPORTS")
    if(NOT ARG_NAME OR NOT ARG_COMMAND)
        message(FATAL_ERROR "corvale_add_test() needs NAME and COMMAND.")
    endif()
    if(ARG_UNPARSED_ARGUMENTS OR ARG_KEYWORDS_MISSING_VALUES)
        message(FATAL_ERROR
            "corvale_add_test() does not understand: ${ARG_UNPARSED_ARGUMENTS} ${ARG_KEYWORDS_MISSING_VALUES}")
    endif()
    set(options --check)
    foreach(profile IN LISTS ARG_PROFILES)
        list(APPEND options --profile "${profile}")
    endforeach()
    foreach(report IN LISTS ARG_REPORTS)
        list(APPEND options --report "${report}")
    endforeach()
    foreach(option IN ITEMS JOBS FAIL_ON BASELINE SESSION TIMEOUT FRAMES)
        if(DEFINED ARG_${option})
            string(TOLOWER ${option} name)
            string(REPLACE "_" "-" name ${name})
            list(APPEND options --${name} "${ARG_${option}}")
        endif()
    endforeach()
    if(ARG_ALL_PROFILES)
        list(APPEND options --all-profiles)
    endif()
    if(ARG_HEADLESS)
        list(APPEND options --headless)
    endif()
    # Only the command itself may be a target, and only add_test() knows its file where it comes first.
    list(POP_FRONT ARG_COMMAND program)
    if(TARGET ${program})
        set(program $<TARGET_FILE:${program}>)
    endif()
    set(folder)
    if(ARG_WORKING_DIRECTORY)
        set(folder WORKING_DIRECTORY ${ARG_WORKING_DIRECTORY})
    endif()
    add_test(NAME ${ARG_NAME} COMMAND ${CORVALE_RUN} ${options} -- ${program} ${ARG_COMMAND} ${folder})
endfunction()
