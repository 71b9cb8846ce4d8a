# Kestrel.plugin, the bundle of macOS and Linux: Contents/MacOS/Kestrel or Contents/Linux-x86-64/Kestrel.so, and its resources.
function(kestrel_finish_plugin name folder)
  set(contents "${folder}/Kestrel.plugin/Contents")
  set(resources "${contents}/Info.plist" "${contents}/PkgInfo" "${contents}/Resources/Kestrel.rsrc")
  add_custom_command(OUTPUT ${resources}
    COMMAND make-resources bundle "${contents}" Kestrel
    DEPENDS make-resources
    VERBATIM)
  target_sources(${name} PRIVATE ${resources})

  set(exports "${PROJECT_SOURCE_DIR}/Kestrel/exports.map")
  if(APPLE)
    set_target_properties(${name} PROPERTIES LIBRARY_OUTPUT_DIRECTORY "${contents}/MacOS" SUFFIX "")
    target_link_options(${name} PRIVATE LINKER:-exported_symbol,_PluginMain)
  else()
    set_target_properties(${name} PROPERTIES
      LIBRARY_OUTPUT_DIRECTORY "${contents}/${CMAKE_SYSTEM_NAME}-${KESTREL_ARCHITECTURE}"
      LINK_DEPENDS "${exports}")
    target_link_options(${name} PRIVATE "-Wl,--version-script=${exports}")
  endif()
endfunction()
