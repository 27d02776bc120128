# The compile options every target of ours shares; CI adds -Werror through CMAKE_COMPILE_WARNING_AS_ERROR.
add_library(quorvel_options INTERFACE)
target_include_directories(quorvel_options INTERFACE ${PROJECT_SOURCE_DIR})
target_compile_definitions(quorvel_options INTERFACE _FILE_OFFSET_BITS=64)
if(MSVC)
  target_compile_options(quorvel_options INTERFACE /W4 /permissive-)
else()
  target_compile_options(quorvel_options INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wnon-virtual-dtor -Woverloaded-virtual)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    # GCC 12 takes assignments to std::string for copies of overlapping memory.
    target_compile_options(quorvel_options INTERFACE -Wno-restrict)
  endif()
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_FLAGS MATCHES "-fsanitize")
    # GCC 12 takes what the sanitizers add to the standard library for uses of uninitialised values.
    target_compile_options(quorvel_options INTERFACE -Wno-maybe-uninitialized)
  endif()
endif()

# quorvel_library(NAME SOURCES... ) declares the library of one folder: static, with our options.
function(quorvel_library name)
  add_library(quorvel_${name} STATIC ${ARGN})
  target_link_libraries(quorvel_${name} PUBLIC quorvel_options)
endfunction()
