# The example and the plug-in under its host write the same pixels where the blend keeps one side whole: `pull_focus`,
# `perch` and `plugin` over `samples`, below `scratch`. At 16 bits the host keeps the file's samples where the effect changed
# nothing, and the example rounds them to the nearest code: half of a 32768th at most, in colour and in alpha, by which the
# comparison multiplies it.
file(REMOVE_RECURSE "${scratch}")
file(MAKE_DIRECTORY "${scratch}")

set(depth "${samples}/depth.png")
set(bits_beauty 8)
set(bits_beauty16 16)
set(apart_beauty 0)
set(apart_beauty16 0.000031)
foreach(beauty IN ITEMS beauty beauty16)
  foreach(blend IN ITEMS 0 100)
    set(options --blur-type Fine --focal-point 62 --in-focus-range 6 --maximum-blur 20 --aspect-ratio 0.5
      --blend-with-original ${blend})
    execute_process(COMMAND "${pull_focus}" "${samples}/${beauty}.png" "${depth}" "${scratch}/example.png" ${options}
      COMMAND_ERROR_IS_FATAL ANY)
    execute_process(COMMAND "${perch}" render --strict --plugin "${plugin}" --input "${samples}/${beauty}.png"
        --control-layer "${depth}" --output "${scratch}/plugin.png" --depth ${bits_${beauty}} ${options}
      COMMAND_ERROR_IS_FATAL ANY)
    execute_process(COMMAND oiiotool "${scratch}/example.png" "${scratch}/plugin.png" --fail ${apart_${beauty}} --diff
      RESULT_VARIABLE differ)
    if(differ)
      message(FATAL_ERROR "${beauty} at blend ${blend}: the two pictures differ")
    endif()
  endforeach()
endforeach()
