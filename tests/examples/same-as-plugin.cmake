# The example and the plug-in under its host write the same bytes where the blend keeps one side whole: `pull_focus`,
# `perch` and `plugin` over `samples`, below `scratch`. The example compresses at the encoder's own level, 6.
file(REMOVE_RECURSE "${scratch}")
file(MAKE_DIRECTORY "${scratch}")

set(depth "${samples}/depth.png")
foreach(beauty IN ITEMS beauty beauty16)
  foreach(blend IN ITEMS 0 100)
    set(options --blur-type Fine --focal-point 62 --in-focus-range 6 --maximum-blur 20 --aspect-ratio 0.5
      --blend-with-original ${blend})
    execute_process(COMMAND "${pull_focus}" "${samples}/${beauty}.png" "${depth}" "${scratch}/example.png" ${options}
      COMMAND_ERROR_IS_FATAL ANY)
    execute_process(COMMAND "${perch}" render --strict --plugin "${plugin}" --input "${samples}/${beauty}.png"
        --control-layer "${depth}" --output "${scratch}/plugin.png" --compression 6 ${options}
      COMMAND_ERROR_IS_FATAL ANY)
    execute_process(COMMAND "${CMAKE_COMMAND}" -E compare_files "${scratch}/example.png" "${scratch}/plugin.png"
      RESULT_VARIABLE differ)
    if(differ)
      message(FATAL_ERROR "${beauty} at blend ${blend}: the two pictures differ")
    endif()
  endforeach()
endforeach()
