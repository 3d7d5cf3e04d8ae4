# 32-bit Windows, the system that hosts run on.
set(CMAKE_SYSTEM_PROCESSOR i686)
set(windows_triple i686-w64-mingw32)
include(${CMAKE_CURRENT_LIST_DIR}/windows.cmake)
