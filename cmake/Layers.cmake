# The layers, lowest first. A layer's sources include headers of its own layer and of layers
# before it in this list, never of one after it. The top-level CMakeLists.txt adds the folders in
# this order and the layering test (cmake/CheckLayering.cmake) checks the includes against it.
# A nested folder (oud/view, playback/qt) is its own layer: a file belongs to the longest folder
# of the list its path starts with.
set(TARABIX_LAYERS base settings midi oud/model playback playback/qt oud/view app tools)

# Layers whose sources must not include Qt: the model and the player run headless.
set(TARABIX_QT_FREE_LAYERS base midi oud/model playback)

# tarabix_header_root(<target> <PUBLIC|PRIVATE|INTERFACE>)
#
# Gives <target> an include root of its own in the build tree that holds only the headers listed
# in its sources, each linked at its path from the source root: midi/MidiFile.h of tarabix_midi is
# ${CMAKE_BINARY_DIR}/include/tarabix_midi/midi/MidiFile.h -> ${CMAKE_SOURCE_DIR}/midi/MidiFile.h.
# The sources keep including "midi/MidiFile.h", and a target finds that header only when it links
# tarabix_midi (PUBLIC/INTERFACE) or is tarabix_midi. A header left out of the list is not
# includable from anywhere but its own folder, so the list stays complete.
function(tarabix_header_root target scope)
  get_target_property(sources ${target} SOURCES)
  get_target_property(sourceDir ${target} SOURCE_DIR)
  set(root ${CMAKE_BINARY_DIR}/include/${target})
  # Rebuilt at every configure, so a header taken off the list is gone from the root too.
  file(REMOVE_RECURSE ${root})
  file(MAKE_DIRECTORY ${root})
  foreach(source IN LISTS sources)
    if(NOT source MATCHES "\\.h$")
      continue()
    endif()
    cmake_path(ABSOLUTE_PATH source BASE_DIRECTORY ${sourceDir} NORMALIZE OUTPUT_VARIABLE header)
    cmake_path(IS_PREFIX CMAKE_SOURCE_DIR ${header} NORMALIZE inTree)
    if(NOT inTree)
      message(FATAL_ERROR "${target}: ${header} is outside the source tree")
    endif()
    file(RELATIVE_PATH path ${CMAKE_SOURCE_DIR} ${header})
    cmake_path(GET path PARENT_PATH folder)
    file(MAKE_DIRECTORY ${root}/${folder})
    file(CREATE_LINK ${header} ${root}/${path} SYMBOLIC)
  endforeach()
  target_include_directories(${target} ${scope} ${root})
endfunction()
