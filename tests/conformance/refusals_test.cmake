# What conformance_replay must not pass: files without an entry, and entries that it does not know.
# cmake -DREPLAY=PROGRAM [-DEMULATOR=PROGRAM] -DFOLDER=DIR -P refusals_test.cmake
function(expect_refusal name content reason)
  file(WRITE ${FOLDER}/${name}.jsonl "${content}")
  execute_process(COMMAND ${EMULATOR} ${REPLAY} ${FOLDER}/${name}.jsonl
    RESULT_VARIABLE result OUTPUT_VARIABLE output)
  if(NOT result EQUAL 1 OR NOT output MATCHES "${reason}" OR NOT output MATCHES "0 passed, 1 failed")
    message(SEND_ERROR "${name}: exit code ${result}, ${output}")
  endif()
endfunction()

file(MAKE_DIRECTORY ${FOLDER})
expect_refusal(empty "" "holds no entry")
expect_refusal(blank "\n\n" "holds no entry")
expect_refusal(no_kind "{\"name\": \"x\"}\n" "neither a decode vector nor a scenario")
expect_refusal(no_steps "{\"name\": \"x\", \"steps\": []}\n" "neither a decode vector nor a scenario")
expect_refusal(unknown_record "{\"name\": \"x\", \"record\": \"Y\", \"data\": \"\"}\n" "unknown record Y")
expect_refusal(no_json "hello\n" "parse error")
