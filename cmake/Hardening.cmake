# What makes a fault in a reader of hostile files harder to use. Not with the sanitizers, which see more and
# whose own instrumentation some of this disturbs.
if(VELTRANE_SANITIZE)
    return()
endif()

include(CheckCXXCompilerFlag)
include(CheckLinkerFlag)
include(CheckPIESupported)
check_pie_supported() # CMAKE_POSITION_INDEPENDENT_CODE alone compiles for it and does not link so

function(harden_compiling name flag)
    check_cxx_compiler_flag(${flag} ${name})
    if(${name})
        add_compile_options(${flag})
    endif()
endfunction()
harden_compiling(STACK_PROTECTOR -fstack-protector-strong)
harden_compiling(STACK_CLASH_PROTECTION -fstack-clash-protection)
# Asked by processor: clang takes the other's flag too, and warns in every file.
if(CMAKE_SYSTEM_PROCESSOR MATCHES "x86|AMD64|i.86")
    harden_compiling(CF_PROTECTION -fcf-protection=full)
elseif(CMAKE_SYSTEM_PROCESSOR MATCHES "aarch64|arm64")
    harden_compiling(BRANCH_PROTECTION -mbranch-protection=standard)
endif()

# Checked copies need the optimiser. First undone: a distribution's build may have set another level.
add_compile_options($<$<NOT:$<CONFIG:Debug>>:-U_FORTIFY_SOURCE> $<$<NOT:$<CONFIG:Debug>>:-D_FORTIFY_SOURCE=3>)

# Addresses of functions are settled at the start and read-only from then on; no stack that can be executed.
foreach(flag IN ITEMS -Wl,-z,relro -Wl,-z,now -Wl,-z,noexecstack)
    string(MAKE_C_IDENTIFIER LINKER${flag} name)
    check_linker_flag(CXX ${flag} ${name})
    if(${name})
        add_link_options(${flag})
    endif()
endforeach()
