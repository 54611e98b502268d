# How every target of this project is built: warnings, sanitizers, and one function for each kind of target.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
if(NOT CMAKE_BUILD_TYPE)
    set(CMAKE_BUILD_TYPE Release)
endif()

option(CORVALE_PRECOMPILE "Precompile the headers of Qt" OFF)
find_program(CORVALE_CCACHE ccache)
if(CORVALE_CCACHE)
    set(CMAKE_CXX_COMPILER_LAUNCHER ${CORVALE_CCACHE})
    if(CORVALE_PRECOMPILE)
        list(PREPEND CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env CCACHE_SLOPPINESS=pch_defines,time_macros)
    endif()
endif()

add_library(corvale_warnings INTERFACE)
target_compile_options(corvale_warnings INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion
    # GCC 12 warns of copies that overlap where a literal and a std::string are added; it is wrong (its bug 105651).
    $<$<AND:$<CXX_COMPILER_ID:GNU>,$<VERSION_LESS:$<CXX_COMPILER_VERSION>,13>>:-Wno-restrict>
    $<$<BOOL:${CORVALE_WARNINGS_AS_ERRORS}>:-Werror>)

add_library(corvale_sanitizers INTERFACE)
if(CORVALE_SANITIZE)
    target_compile_options(corvale_sanitizers INTERFACE
        -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(corvale_sanitizers INTERFACE -fsanitize=address,undefined)
endif()

if(CORVALE_FUZZ)
    if(NOT CMAKE_CXX_COMPILER_ID MATCHES "Clang")
        message(FATAL_ERROR "The fuzzers need clang: set CMAKE_CXX_COMPILER=clang++")
    endif()
    target_compile_options(corvale_sanitizers INTERFACE -fsanitize=fuzzer-no-link)
endif()

# The headers of Qt, compiled once rather than in every file. Not in every build, so that a file that forgets an include
# does not compile.
set(corvale_qt_definitions QT_NO_CAST_TO_ASCII QT_NO_CAST_FROM_BYTEARRAY QT_NO_URL_CAST_FROM_STRING)
function(corvale_add_precompiled target)
    set(source ${CMAKE_CURRENT_BINARY_DIR}/${target}.cpp)
    file(CONFIGURE OUTPUT ${source} CONTENT "")
    add_library(${target} OBJECT EXCLUDE_FROM_ALL ${source})
    target_compile_definitions(${target} PRIVATE ${corvale_qt_definitions})
    target_link_libraries(${target} PRIVATE Qt6::Widgets corvale_warnings corvale_sanitizers)
    target_precompile_headers(${target} PRIVATE <QtWidgets>)
endfunction()

# Names that the string-based signal and slot connections rely on must not be mixed with Qt's macros for
# `signals` and `slots` in code without Qt, so only rooms with Qt get the code generators.
function(corvale_use_qt target)
    set_target_properties(${target} PROPERTIES AUTOMOC ON AUTOUIC ON)
    target_compile_definitions(${target} PRIVATE ${corvale_qt_definitions})
    # Another one where the options differ: compilers take it only with the same ones.
    if(CORVALE_PRECOMPILE)
        target_link_libraries(${target} PRIVATE Qt6::Widgets)
        # Else ccache cannot know what comes from the precompiled header.
        target_compile_options(${target} PRIVATE $<$<CXX_COMPILER_ID:GNU>:-fpch-preprocess>)
        target_precompile_headers(${target} REUSE_FROM ${CORVALE_PRECOMPILED})
    endif()
endfunction()

# A room: a folder of src/ as a static library. Its headers are visible to those that link it and to nobody else.
function(corvale_add_room target)
    add_library(${target} STATIC ${ARGN})
    target_include_directories(${target} PUBLIC ${CMAKE_CURRENT_SOURCE_DIR})
    target_link_libraries(${target} PRIVATE corvale_warnings corvale_sanitizers)
endfunction()

# Lets those who link a room include its headers behind the room's name as well, such as "models/Profile.h": for rooms
# that name a class alike.
function(corvale_prefix_headers target)
    get_filename_component(room ${CMAKE_CURRENT_SOURCE_DIR} NAME)
    set(headers ${CMAKE_CURRENT_BINARY_DIR}/headers)
    file(MAKE_DIRECTORY ${headers})
    file(CREATE_LINK ${CMAKE_CURRENT_SOURCE_DIR} ${headers}/${room} SYMBOLIC)
    target_include_directories(${target} PUBLIC ${headers})
endfunction()

# Adds a table, made from a data file at build time, to a target: corvale_add_table(<target> <inc> <data> <kind> ...)
# where kind and what follows are arguments of tools/make-tables.
function(corvale_add_table target output data kind)
    set(generated ${CMAKE_CURRENT_BINARY_DIR}/${output})
    add_custom_command(
        OUTPUT ${generated}
        COMMAND make-tables ${kind} ${CMAKE_CURRENT_SOURCE_DIR}/${data} ${generated} ${ARGN}
        DEPENDS make-tables ${CMAKE_CURRENT_SOURCE_DIR}/${data}
        VERBATIM)
    target_sources(${target} PRIVATE ${generated})
    target_include_directories(${target} PRIVATE ${CMAKE_CURRENT_BINARY_DIR})
endfunction()
