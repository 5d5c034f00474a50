# cmake -DTARABIX_SOURCE_DIR=<source tree> -DWORK_DIR=<scratch folder> -P tests/LayeringPlanted.cmake
#
# Writes a small tree with the real layer folders, every kind of include the layering check must
# judge, runs the check on it and compares the faults it reports with the ones planted: a missed
# fault and a reported good include both fail.
cmake_minimum_required(VERSION 3.25)
include(${TARABIX_SOURCE_DIR}/cmake/Layers.cmake)

file(REMOVE_RECURSE "${WORK_DIR}")
foreach(layer IN LISTS TARABIX_LAYERS)
  file(MAKE_DIRECTORY "${WORK_DIR}/${layer}")
endforeach()
file(MAKE_DIRECTORY "${WORK_DIR}/tests/common")

function(plant path)
  string(JOIN "\n" text ${ARGN})
  file(WRITE "${WORK_DIR}/${path}" "${text}\n")
endfunction()

# Headers the planted files include.
plant(base/Clock.h "#pragma once")
plant(settings/Ini.h "#pragma once")
plant(midi/Track.h "#pragma once")
plant(oud/model/Ud.h "#pragma once")
plant(oud/view/Grid.h "#pragma once")
plant(playback/Player.h "#pragma once")
plant(playback/qt/Wait.h "#pragma once")
plant(tests/common/TempFolder.h "#pragma once")

# Good includes: down, inside the layer, Qt where it is allowed, a lowercase standard header.
plant(midi/Good.cpp
  "#include \"midi/Track.h\"" "#include \"base/Clock.h\"" "#include <queue>" "#include <cstdint>")
plant(oud/model/Good.cpp
  "#include \"oud/model/Ud.h\"" "#include \"Ud.h\"" "#include \"midi/Track.h\"" "#include \"settings/Ini.h\"")
plant(playback/qt/Good.cpp
  "#include \"playback/qt/Wait.h\"" "#include \"playback/Player.h\"" "#include \"../Player.h\""
  "#include <QTimer>" "#include <QtCore/QObject>")
plant(oud/view/Good.cpp
  "#include \"oud/model/Ud.h\"" "#include \"../model/Ud.h\"" "#include \"playback/qt/Wait.h\"" "#include <QImage>")
plant(settings/Good.cpp "#include <QSettings>" "#include \"base/Clock.h\"")
plant(app/Good.cpp "#include \"oud/view/Grid.h\"" "#include \"TarabixVersion.h\"" "#include <QWidget>")
plant(tools/Good.cpp "#include \"playback/qt/Wait.h\"" "#include \"rtmidi/RtMidi.h\"")

# Faults, each expected once below.
plant(midi/Bad.cpp "#include \"oud/view/Grid.h\"" "  #  include \"tests/common/TempFolder.h\"")
plant(oud/model/Bad.h "#include \"oud/view/Grid.h\"" "#include \"../view/Grid.h\"")
plant(playback/Bad.cpp
  "#include \"playback/qt/Wait.h\"" "#include \"qt/Wait.h\"" "#include <QtCore/QString>" "#include \"../../x.h\"")
plant(base/Bad.h "#include <QObject>" "#include <qglobal.h>" "#include \"settings/Ini.h\"")
plant(oud/view/Bad.cpp "#include \"app/Good.cpp\"")
set(expected
  "base/Bad.h includes \"settings/Ini.h\""
  "base/Bad.h includes <QObject>"
  "base/Bad.h includes <qglobal.h>"
  "midi/Bad.cpp includes \"oud/view/Grid.h\""
  "midi/Bad.cpp includes \"tests/common/TempFolder.h\""
  "oud/model/Bad.h includes \"../view/Grid.h\""
  "oud/model/Bad.h includes \"oud/view/Grid.h\""
  "oud/view/Bad.cpp includes \"app/Good.cpp\""
  "playback/Bad.cpp includes \"../../x.h\""
  "playback/Bad.cpp includes \"playback/qt/Wait.h\""
  "playback/Bad.cpp includes \"qt/Wait.h\""
  "playback/Bad.cpp includes <QtCore/QString>")

execute_process(
  COMMAND ${CMAKE_COMMAND} -DTARABIX_SOURCE_DIR=${WORK_DIR} -P ${TARABIX_SOURCE_DIR}/cmake/CheckLayering.cmake
  OUTPUT_VARIABLE output ERROR_VARIABLE output RESULT_VARIABLE result)
string(REGEX MATCHALL "layering fault: [^\n]*" lines "${output}")
set(reported "")
foreach(line IN LISTS lines)
  string(REGEX REPLACE "^layering fault: (.*) \\([^()]*\\)$" "\\1" fault "${line}")
  list(APPEND reported "${fault}")
endforeach()
list(SORT reported)
list(SORT expected)
if(NOT reported STREQUAL expected)
  string(REPLACE ";" "\n  " want "${expected}")
  string(REPLACE ";" "\n  " got "${reported}")
  message(FATAL_ERROR "planted faults:\n  ${want}\nreported:\n  ${got}\n\nthe check said:\n${output}")
endif()
if(result EQUAL 0)
  message(FATAL_ERROR "the check found the planted faults but exited with 0")
endif()
list(LENGTH expected count)
message(STATUS "the layering check reports the ${count} planted faults and nothing else")
