# Kestrel.aex, the library of Windows, which holds its own resources and needs no library that the system does not have.
enable_language(RC)

function(kestrel_finish_plugin name folder)
  set(resources "${CMAKE_CURRENT_BINARY_DIR}/${name}-resources")
  add_custom_command(OUTPUT "${resources}/Kestrel.rc" "${resources}/Kestrel.pipl" "${resources}/Kestrel.be-pipl"
    COMMAND make-resources windows "${resources}" Kestrel
    DEPENDS make-resources
    VERBATIM)
  set_source_files_properties("${resources}/Kestrel.rc" PROPERTIES
    OBJECT_DEPENDS "${resources}/Kestrel.pipl;${resources}/Kestrel.be-pipl"
    INCLUDE_DIRECTORIES "${resources}")
  target_sources(${name} PRIVATE "${resources}/Kestrel.rc")
  set_target_properties(${name} PROPERTIES SUFFIX .aex LIBRARY_OUTPUT_DIRECTORY "${folder}")
  target_link_options(${name} PRIVATE -static)
endfunction()
