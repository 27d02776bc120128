# Makes faults in the reading of hostile logs harder to turn into anything worse: checked stack frames and library
# calls, code at random addresses, tables that are read-only once the program runs. Part of quorvel_options.
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
include(CheckPIESupported)
check_pie_supported(LANGUAGES CXX)

if(NOT MSVC)
  target_compile_options(quorvel_options INTERFACE -fstack-protector-strong)
  # Needs an optimised build, and says so with a warning where there is none. Some compilers predefine it.
  target_compile_options(quorvel_options INTERFACE $<$<CONFIG:Release>:-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2>)
endif()
if(MINGW)
  target_link_libraries(quorvel_options INTERFACE ssp)  # the checks themselves, part of the C library elsewhere
endif()
if(CMAKE_SYSTEM_NAME STREQUAL "Linux")
  target_link_options(quorvel_options INTERFACE -Wl,-z,relro -Wl,-z,now)
endif()
