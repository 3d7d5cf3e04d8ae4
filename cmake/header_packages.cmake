# header_package(TARGET FOLDER PACKAGE): the target of a package that consists of headers alone.
# Another system's compiler must not see the folder where such packages lie, since the headers of this
# system are there too; it gets a folder with a link to the package's own.
function(header_package target folder package)
    if(NOT CMAKE_CROSSCOMPILING)
        find_package(${package} REQUIRED GLOBAL)
    elseif(NOT TARGET ${target})
        find_path(${package}_parent ${folder} REQUIRED NO_CMAKE_FIND_ROOT_PATH)
        set(links ${CMAKE_BINARY_DIR}/headers)
        file(MAKE_DIRECTORY ${links})
        file(CREATE_LINK ${${package}_parent}/${folder} ${links}/${folder} SYMBOLIC)
        add_library(${target} INTERFACE IMPORTED GLOBAL)
        target_include_directories(${target} INTERFACE ${links})
    endif()
endfunction()
