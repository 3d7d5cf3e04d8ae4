# What the toolchain files of both Windows processors share; they set `windows_triple`. Programs and
# libraries need nothing at run time but the system's own libraries, and the same sources give the
# same bytes.
set(CMAKE_SYSTEM_NAME Windows)

set(CMAKE_C_COMPILER ${windows_triple}-gcc-posix)
set(CMAKE_CXX_COMPILER ${windows_triple}-g++-posix) # these, not -win32, have threads
set(CMAKE_RC_COMPILER ${windows_triple}-windres)
set(CMAKE_DLLTOOL ${windows_triple}-dlltool)

set(CMAKE_FIND_ROOT_PATH /usr/${windows_triple})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(ZLIB_USE_STATIC_LIBS ON)

set(CMAKE_CXX_FLAGS_INIT "-ffunction-sections -fdata-sections")
foreach(kind EXE SHARED MODULE)
    set(CMAKE_${kind}_LINKER_FLAGS_INIT
        "-static -static-libgcc -static-libstdc++ -Wl,--gc-sections -Wl,--no-insert-timestamp")
    set(CMAKE_${kind}_LINKER_FLAGS_RELEASE_INIT "-s")
endforeach()
