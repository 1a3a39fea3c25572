# SPDX-License-Identifier: GPL-3.0-or-later
# What scripts rely on: the exit codes of zarno (0, 1 bad input, 2 wrong use), where it says why, and that packing
# undoes unpacking. Called with ZARNO, the command to run, and FOLDER, an empty place to work in.
function(expect code said)
    execute_process(COMMAND ${ZARNO} ${ARGN} WORKING_DIRECTORY ${FOLDER} RESULT_VARIABLE result OUTPUT_VARIABLE out
                    ERROR_VARIABLE error)
    if(NOT result STREQUAL code OR NOT "${out}${error}" MATCHES "${said}")
        message(SEND_ERROR "zarno ${ARGN}: exit code ${result} instead of ${code}, or no \"${said}\" in\n${out}${error}")
    endif()
    if(code EQUAL 1 AND NOT error MATCHES "^zarno: ")
        message(SEND_ERROR "zarno ${ARGN}: nothing on the error channel")
    endif()
endfunction()

file(REMOVE_RECURSE ${FOLDER})
file(WRITE ${FOLDER}/in/instrument.json [[{ "format": "zarno-instrument", "name": "One", "groups": [ { "name": "G",
  "zones": [ { "sample": "a.wav",
    "settings": { "rootKey": 60, "endFrame": 9, "loopStart": 0, "loopEnd": 9, "pan": 0.1 } } ] } ] }]])
file(WRITE ${FOLDER}/bad/instrument.json [[{ "format": "zarno-instrument", "settings": { "volume": "loud" } }]])
file(WRITE ${FOLDER}/text.zse "this is no instrument")

expect(0 "Usage" --help)
expect(2 "subcommand")
expect(2 "" sing)
expect(2 "FILE" info)
expect(2 "" info one.zse --loud)
expect(1 "absent.zse: the file cannot be opened" info absent.zse)
expect(1 "text.zse: this is not an instrument" unpack text.zse out)
expect(1 "settings.volume: this must be a number" pack bad out.zse)
expect(1 "a.wav: there is no wave" pack in embedded.zse --embed)
expect(0 "warning: there is no wave \"a.wav\"" pack in one.zse)
expect(0 "pan 0.1" info one.zse)
expect(0 "\"rootKey\": 60" info one.zse --json)
expect(0 "" unpack one.zse out)
expect(1 "instrument.json: this is there already" unpack one.zse out)
expect(0 "" unpack one.zse out --force)
expect(0 "" pack out two.zse)
execute_process(COMMAND ${CMAKE_COMMAND} -E compare_files ${FOLDER}/one.zse ${FOLDER}/two.zse RESULT_VARIABLE differ)
if(differ)
    message(SEND_ERROR "packing did not undo unpacking")
endif()
