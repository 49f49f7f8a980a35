# Cross build for Windows (x86_64) with Debian's mingw-w64 (posix threads).
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(KELVARY_MINGW_TRIPLE x86_64-w64-mingw32)
include(${CMAKE_CURRENT_LIST_DIR}/mingw-w64-common.cmake)
