# What every target of ours is compiled with: strict warnings as errors, and the sanitizers where asked for.
add_library(pictorel_options INTERFACE)
target_compile_options(pictorel_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-align -Wnull-dereference
  -Wformat=2 -Werror)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # GCC 12 reports null dereferences and overruns inside the standard library's own inlined code.
  target_compile_options(pictorel_options INTERFACE -Wno-null-dereference -Wno-stringop-overflow
    -Wno-array-bounds -Wno-maybe-uninitialized)
endif()
target_include_directories(pictorel_options INTERFACE ${CMAKE_SOURCE_DIR}/src)
if(PICTOREL_SANITIZE)
  target_compile_options(pictorel_options INTERFACE -fsanitize=address,undefined -fno-sanitize-recover=undefined
    -fno-omit-frame-pointer)
  target_compile_definitions(pictorel_options INTERFACE PICTOREL_SANITIZED)
  target_link_options(pictorel_options INTERFACE -fsanitize=address,undefined)
endif()
if(PICTOREL_FUZZ) # the coverage that the fuzzer steers by, and small pictures; its main comes with the targets
  target_compile_definitions(pictorel_options INTERFACE FUZZING_BUILD_MODE_UNSAFE_FOR_PRODUCTION)
  target_compile_options(pictorel_options INTERFACE -fsanitize=fuzzer-no-link)
endif()

# pictorel_library(NAME source... ): a static library of ours under the common options.
function(pictorel_library name)
  add_library(${name} STATIC ${ARGN})
  target_link_libraries(${name} PUBLIC pictorel_options)
endfunction()
