# cmake -DBUILD=<build folder> -P Seam.cmake
# Logic that asks for the toolkit must not compile, and for that reason only.
function(build target result output)
    execute_process(COMMAND ${CMAKE_COMMAND} --build ${BUILD} --target ${target}
        RESULT_VARIABLE status OUTPUT_VARIABLE text ERROR_VARIABLE text)
    set(${result} ${status} PARENT_SCOPE)
    set(${output} "${text}" PARENT_SCOPE)
endfunction()

build(seam_intact status text)
if(NOT status EQUAL 0)
    message(FATAL_ERROR "The file that stands for the logic does not compile by itself:\n${text}")
endif()

build(seam_leak status text)
if(status EQUAL 0)
    message(FATAL_ERROR "Logic can include <QString>: something that it links leads to the toolkit.")
endif()
string(REGEX MATCHALL "error: [^\n]*" errors "${text}")
if(NOT errors MATCHES "^[^;]*QString['\"]?(: No such file| file not found)[^;]*$")
    message(FATAL_ERROR "Logic that includes <QString> fails for another reason:\n${text}")
endif()
