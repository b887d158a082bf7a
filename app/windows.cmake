# What Windows shows of the program: its icon, its version and how it wants to be treated. Also what
# makes two builds of one source the same.
find_program(TESSAVO_ICOTOOL icotool REQUIRED DOC "Makes icons for Windows (package icoutils)")

set(sizes 16 20 24 32 40 48 64 128 256)
set(pictures "")
set(icon_arguments "")
foreach(size ${sizes})
    set(picture ${CMAKE_CURRENT_BINARY_DIR}/icon${size}.png)
    add_custom_command(OUTPUT ${picture}
        COMMAND ${TESSAVO_RSVG_CONVERT} --width ${size} --height ${size} --output ${picture}
                ${CMAKE_CURRENT_SOURCE_DIR}/resources/image/base/window.svg
        DEPENDS resources/image/base/window.svg
        VERBATIM)
    list(APPEND pictures ${picture})
    # Windows takes compressed pictures in the largest size only.
    if(size EQUAL 256)
        list(APPEND icon_arguments --raw=${picture})
    else()
        list(APPEND icon_arguments ${picture})
    endif()
endforeach()
set(icon ${CMAKE_CURRENT_BINARY_DIR}/tessavo-tools.ico)
add_custom_command(OUTPUT ${icon}
    COMMAND ${TESSAVO_ICOTOOL} --create --output=${icon} ${icon_arguments}
    DEPENDS ${pictures}
    VERBATIM)

configure_file(tessavo-tools.rc.in ${CMAKE_CURRENT_BINARY_DIR}/tessavo-tools.rc @ONLY)
enable_language(RC)
set_source_files_properties(${CMAKE_CURRENT_BINARY_DIR}/tessavo-tools.rc PROPERTIES
    OBJECT_DEPENDS "${icon};${CMAKE_CURRENT_SOURCE_DIR}/tessavo-tools.manifest"
    COMPILE_OPTIONS "-c;65001")
target_sources(tessavo-tools PRIVATE ${CMAKE_CURRENT_BINARY_DIR}/tessavo-tools.rc ${icon})
target_link_options(tessavo-tools PRIVATE $<$<CONFIG:Release>:-s>)
