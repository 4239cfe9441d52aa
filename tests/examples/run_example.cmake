# Runs an example in a scratch folder and compares the tables it writes with those in its expected/ folder.
# Usage: cmake -D program=CORVANTILE -D compare=COMPARE_TABLES -D example=DIR -D scratch=DIR -P run_example.cmake
cmake_minimum_required(VERSION 3.25)

# Mathematical libraries differ in the last bit of a sine or a power, and the searches carry that on: tables agree to
# well below what a display of 16 bits can show, not to every digit.
set(tolerance 1e-6)

file(GLOB expected RELATIVE ${example}/expected ${example}/expected/*.txt)
if(NOT expected)
  message(FATAL_ERROR "${example}/expected holds no tables")
endif()
file(REMOVE_RECURSE ${scratch})
file(MAKE_DIRECTORY ${scratch})
file(COPY ${example}/measurements.txt ${example}/settings.txt DESTINATION ${scratch})

execute_process(COMMAND ${program} INPUT_FILE ${scratch}/settings.txt WORKING_DIRECTORY ${scratch}
                RESULT_VARIABLE status OUTPUT_VARIABLE out ERROR_VARIABLE err)
if(NOT status EQUAL 0 OR NOT err STREQUAL " Corvantile 1.09\n normal exit\n" OR NOT out STREQUAL "")
  message(FATAL_ERROR "status ${status}, standard output:\n${out}\nstandard error:\n${err}")
endif()

file(GLOB written RELATIVE ${scratch} ${scratch}/*.txt)
list(REMOVE_ITEM written measurements.txt settings.txt)
if(NOT "${written}" STREQUAL "${expected}")
  message(FATAL_ERROR "written: ${written}, expected: ${expected}")
endif()
foreach(table ${expected})
  execute_process(COMMAND ${compare} ${scratch}/${table} ${example}/expected/${table} ${tolerance}
                  COMMAND_ERROR_IS_FATAL ANY)
endforeach()
