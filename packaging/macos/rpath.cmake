# SPDX-License-Identifier: MIT
# CMake asks sw_vers, a program of macOS, whether the linker knows @rpath. On Linux the answer stands here.
set(CMAKE_SHARED_LIBRARY_RUNTIME_C_FLAG "-Wl,-rpath,")
