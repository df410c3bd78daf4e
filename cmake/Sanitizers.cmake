# What the executables that draw text link in addition.
add_library(veltrane_sanitizers INTERFACE)
if(VELTRANE_SANITIZE)
    add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
    # The standard library's own checks of indexes and nil pointers.
    add_compile_definitions(_GLIBCXX_ASSERTIONS)
    add_link_options(-fsanitize=address,undefined)
    target_sources(veltrane_sanitizers INTERFACE ${PROJECT_SOURCE_DIR}/cmake/LeakSuppressions.cpp)
endif()
if(VELTRANE_FUZZ)
    add_compile_options(-fsanitize=fuzzer-no-link)
endif()
