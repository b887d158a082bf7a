# What every target of the program is compiled with: the standard, warnings, Qt's strict switches and,
# when asked for, sanitizers. Whether a warning is an error is the preset's affair: a newer compiler
# than ours must not keep anybody from building.
add_library(tessavo_strict INTERFACE)
target_compile_features(tessavo_strict INTERFACE cxx_std_17)
target_compile_options(tessavo_strict INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor)
if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    # This version of Qt adds a key and its modifier, and its logging leaves arguments out.
    target_compile_options(tessavo_strict INTERFACE
        -Wno-gnu-zero-variadic-macro-arguments -Wno-enum-enum-conversion)
endif()
target_compile_definitions(tessavo_strict INTERFACE
    QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_CAST_FROM_BYTEARRAY QT_NO_URL_CAST_FROM_STRING
    QT_NO_NARROWING_CONVERSIONS_IN_CONNECT QT_DEPRECATED_WARNINGS
    QT_DISABLE_DEPRECATED_BEFORE=0x050F00)
target_include_directories(tessavo_strict INTERFACE ${PROJECT_SOURCE_DIR})
if(TESSAVO_SANITIZE)
    target_compile_options(tessavo_strict INTERFACE
        -fsanitize=${TESSAVO_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
    target_link_options(tessavo_strict INTERFACE -fsanitize=${TESSAVO_SANITIZE})
endif()
if(WIN32)
    # Two builds of one source give the same program, wherever and whenever they are made.
    target_compile_options(tessavo_strict INTERFACE -ffile-prefix-map=${PROJECT_BINARY_DIR}=build
        -ffile-prefix-map=${PROJECT_SOURCE_DIR}=.)
    target_link_options(tessavo_strict INTERFACE -Wl,--no-insert-timestamp)
endif()

# tessavo_room(NAME SOURCES ... LIBRARIES ...): one static library of the house.
function(tessavo_room name)
    cmake_parse_arguments(ROOM "" "" "SOURCES;LIBRARIES" ${ARGN})
    add_library(${name} STATIC ${ROOM_SOURCES})
    target_link_libraries(${name} PUBLIC tessavo_strict ${ROOM_LIBRARIES})
endfunction()
