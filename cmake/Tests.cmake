# What the tests cannot do without. Where it is missing the program is built all the same, and the reason is said.
if(NOT VELTRANE_TESTS)
    return()
endif()

# The first interpreter with the binding that the tests in a real window need: a system has it for one of its
# interpreters, which need not be the first on the path.
function(has_gobject_binding valid interpreter)
    execute_process(COMMAND ${interpreter} -c "import gi" RESULT_VARIABLE status OUTPUT_QUIET ERROR_QUIET)
    if(NOT status EQUAL 0)
        set(${valid} FALSE PARENT_SCOPE)
    endif()
endfunction()
find_program(TEST_PYTHON python3 VALIDATOR has_gobject_binding)
find_program(TEST_PYTHON python3)
find_package(GTest QUIET)

foreach(needed IN ITEMS GTest_FOUND TEST_PYTHON)
    if(NOT ${needed})
        string(REGEX REPLACE "_FOUND|TEST_" "" name ${needed})
        message(WARNING "The tests are skipped: ${name} is missing.")
        set(VELTRANE_TESTS OFF)
    endif()
endforeach()
