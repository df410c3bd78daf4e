# Includes are written from the root of the project.
# Warnings reach our own targets only. -Wshadow=local: the full -Wshadow objects to a function that shares
# its class's name, which is how single windows are named here.
add_library(veltrane_warnings INTERFACE)
target_include_directories(veltrane_warnings INTERFACE ${PROJECT_SOURCE_DIR})
target_compile_options(veltrane_warnings INTERFACE
    -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wnon-virtual-dtor -Wold-style-cast
    $<$<CXX_COMPILER_ID:GNU>:-Wshadow=local>)
