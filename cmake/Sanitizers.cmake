if(VELTRANE_SANITIZE)
    add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
    # The standard library's own checks of indexes and nil pointers.
    add_compile_definitions(_GLIBCXX_ASSERTIONS)
    add_link_options(-fsanitize=address,undefined)
endif()
if(VELTRANE_FUZZ)
    add_compile_options(-fsanitize=fuzzer-no-link)
endif()
