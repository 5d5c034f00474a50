# data/ is copied beside the executables on every build, so tunings.ini, maqams.ini, the pictures,
# samples/ and help/ sit in the program folder exactly as they will when installed.
add_custom_target(tarabix_data ALL
  COMMAND ${CMAKE_COMMAND} -E copy_directory ${CMAKE_SOURCE_DIR}/data ${TARABIX_BIN_DIR}
  COMMENT "Copying data/ beside the program")
