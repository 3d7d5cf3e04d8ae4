# 64-bit Windows: the same code, for running the tests fast.
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(windows_triple x86_64-w64-mingw32)
set(CMAKE_CROSSCOMPILING_EMULATOR /usr/lib/wine/wine64)
include(${CMAKE_CURRENT_LIST_DIR}/windows.cmake)
