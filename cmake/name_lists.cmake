# Which functions a library shows and which it takes from another, by plain lists: one name a line, as
# 32-bit Windows binds it, with the underscore and the number of argument bytes (_j_loadFile@8).
# Everywhere on Windows the tables of a file hold these very names; elsewhere a function goes by its
# name without them.

# Sets `out` to the lines of the list and makes the configuration depend on it.
function(read_name_list out list)
    file(STRINGS ${list} names REGEX "^_[A-Za-z0-9_]+@[0-9]+$")
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${list})
    set(${out} ${names} PARENT_SCOPE)
endfunction()

# How the function is called in this project's sources (j_loadFile).
function(source_name out name)
    string(REGEX REPLACE "^_(.*)@[0-9]+$" "\\1" plain ${name})
    set(${out} ${plain} PARENT_SCOPE)
endfunction()

# The function as the Windows linker knows it, where only 32-bit processors decorate names.
function(linker_name out name)
    if(CMAKE_SYSTEM_PROCESSOR STREQUAL i686)
        string(REGEX REPLACE "^_" "" symbol ${name})
    else()
        source_name(symbol ${name})
    endif()
    set(${out} ${symbol} PARENT_SCOPE)
endfunction()

# export_names(LIBRARY LIST): the shared library shows the functions of the list and nothing else.
function(export_names library list)
    read_name_list(names ${list})
    set(lines "")
    if(WIN32)
        foreach(name ${names})
            linker_name(symbol ${name})
            string(APPEND lines "    ${name} = ${symbol}\n")
        endforeach()
        set(file ${CMAKE_CURRENT_BINARY_DIR}/${library}.def)
        file(GENERATE OUTPUT ${file} CONTENT "LIBRARY ${library}.dll\nEXPORTS\n${lines}")
        target_link_options(${library} PRIVATE ${file})
    else()
        foreach(name ${names})
            source_name(symbol ${name})
            string(APPEND lines "    ${symbol};\n")
        endforeach()
        set(file ${CMAKE_CURRENT_BINARY_DIR}/${library}.map)
        file(GENERATE OUTPUT ${file} CONTENT "{\n  global:\n${lines}  local:\n    *;\n};\n")
        target_link_options(${library} PRIVATE LINKER:--version-script=${file})
    endif()
    set_target_properties(${library} PROPERTIES LINK_DEPENDS ${file})
endfunction()

# import_names(TARGET DLL LIST): on Windows, makes TARGET an import library by which programs bind
# the functions of the list in DLL under the very names of the list.
function(import_names target dll list)
    read_name_list(names ${list})
    set(lines "")
    foreach(name ${names})
        linker_name(symbol ${name})
        string(APPEND lines "    ${symbol} == ${name}\n")
    endforeach()
    set(definition ${CMAKE_CURRENT_BINARY_DIR}/${target}.def)
    set(archive ${CMAKE_CURRENT_BINARY_DIR}/${CMAKE_STATIC_LIBRARY_PREFIX}${target}.a)
    file(GENERATE OUTPUT ${definition} CONTENT "LIBRARY ${dll}\nEXPORTS\n${lines}")
    add_custom_command(OUTPUT ${archive}
        COMMAND ${CMAKE_DLLTOOL} --input-def ${definition} --output-lib ${archive}
        DEPENDS ${definition} VERBATIM)
    add_custom_target(${target}_archive DEPENDS ${archive})
    add_library(${target} INTERFACE)
    target_link_libraries(${target} INTERFACE ${archive})
    add_dependencies(${target} ${target}_archive)
endfunction()
