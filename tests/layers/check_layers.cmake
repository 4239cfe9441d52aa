# Fails when a file under `tree` includes what its layer may not, or does what its layer may not; and when a layer lists
# another that it does not use. Prints the number of arrows between layers.
# Usage: cmake -D tree=SRC/corvantile -P check_layers.cmake
cmake_minimum_required(VERSION 3.25)
# Each layer, and the others that it includes from. A layer is listed behind all that it lists.
set(layers
  "numerics:"
  "utils: numerics"
  "monitor: utils numerics"
  "colour: monitor utils numerics"
  "matching: colour monitor utils numerics"
  "job: matching colour monitor utils numerics"
  "documents: job colour monitor utils numerics"
  "readings: documents colour monitor utils numerics"
  "residual: readings matching colour monitor utils numerics"
  "formats: readings documents job matching colour monitor utils numerics"
  "measuring: formats utils numerics"
  "appraisal: readings documents job matching colour monitor numerics"
  "report: appraisal job colour utils"
  "driver: documents job colour monitor utils numerics"
  "kit: report appraisal formats readings documents job colour monitor utils numerics")
set(faults "")
set(names "")
foreach(layer ${layers})
  string(REGEX MATCH "^[^:]+" name ${layer})
  string(REGEX REPLACE "^[^:]+:" "" allowed ${layer})
  string(REGEX MATCHALL "[a-z]+" allowed_${name} "${allowed}")
  foreach(other ${allowed_${name}})
    if(NOT other IN_LIST names)
      string(APPEND faults "  ${name} lists ${other}, which is not before it\n")
    endif()
  endforeach()
  list(APPEND names ${name})
endforeach()

file(GLOB_RECURSE files RELATIVE ${tree} ${tree}/*.hpp ${tree}/*.cpp)
if(NOT files)
  message(FATAL_ERROR "no sources under ${tree}")
endif()
foreach(file ${files})
  string(REGEX MATCH "^[^/]+" folder ${file})
  if(NOT folder IN_LIST names)
    string(APPEND faults "  ${file}: not in one of the layers (${names})\n")
    continue()
  endif()
  file(STRINGS ${tree}/${file} includes REGEX "^[ \t]*#[ \t]*include")
  foreach(line ${includes})
    if(line MATCHES "\"corvantile/([^/\"]+)/[^\"]+\"")
      if(CMAKE_MATCH_1 STREQUAL folder)
        continue()
      elseif(CMAKE_MATCH_1 IN_LIST allowed_${folder})
        list(APPEND used_${folder} ${CMAKE_MATCH_1})
      else()
        string(APPEND faults "  ${file}: ${line}, but ${folder} does not list ${CMAKE_MATCH_1}\n")
      endif()
    elseif(line MATCHES "\"")
      string(APPEND faults "  ${file}: ${line} does not begin with corvantile/\n")
    elseif(folder STREQUAL "numerics" AND line MATCHES "<(iostream|fstream|ostream|istream|cstdio|filesystem|print)>")
      string(APPEND faults "  ${file}: ${line}, but numerics neither prints nor opens files\n")
    endif()
  endforeach()
  if(NOT file MATCHES "^(driver|kit)/main.cpp$")
    file(STRINGS ${tree}/${file} endings REGEX "^[^/\"]*(std::|[ \t(;])(exit|_Exit|_exit|quick_exit|abort|terminate)\\(")
    foreach(line ${endings})
      string(APPEND faults "  ${file}: only main.cpp ends the process: ${line}\n")
    endforeach()
  endif()
endforeach()

set(arrows 0)
foreach(name ${names})
  foreach(other ${allowed_${name}})
    math(EXPR arrows "${arrows} + 1")
    if(NOT other IN_LIST used_${name})
      string(APPEND faults "  ${name} lists ${other}, but includes nothing of it\n")
    endif()
  endforeach()
endforeach()

if(faults)
  message(FATAL_ERROR "the layers are not as listed:\n${faults}")
endif()
list(LENGTH names count)
message(STATUS "${count} layers, ${arrows} arrows between them")
