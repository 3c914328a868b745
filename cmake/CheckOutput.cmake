# Runs PROGRAM (a list: the program and its arguments) and compares what it prints, on either stream, with the file
# EXPECTED. Times that pass, such as "(0.012 seconds)", and time and thread of a log line are masked.
execute_process(COMMAND ${PROGRAM} OUTPUT_VARIABLE theOutput ERROR_VARIABLE theOutput RESULT_VARIABLE theResult)
string(REGEX REPLACE "\\([0-9]+\\.[0-9][0-9][0-9] seconds\\)" "(s.mmm seconds)" theOutput "${theOutput}")
string(REGEX REPLACE "([EWID]) [0-9][0-9]:[0-9][0-9]:[0-9][0-9]:[0-9][0-9][0-9]\\|[0-9a-f]+\\|"
  "\\1 hh:mm:ss:mmm|tttttttt|" theOutput "${theOutput}")
file(READ ${EXPECTED} theExpected)
if(NOT theResult EQUAL 0)
  message(FATAL_ERROR "exit code ${theResult}")
endif()
if(NOT theOutput STREQUAL theExpected)
  message(FATAL_ERROR "printed:\n${theOutput}\nexpected:\n${theExpected}")
endif()
