# The README's example is the program that is compiled and run as `title`.
file(READ ${README} readme)
file(READ ${EXAMPLE} example)
string(FIND "${readme}" "```cpp\n${example}```" place)
if(place EQUAL -1)
  message(FATAL_ERROR "README.md does not show ${EXAMPLE} as it is")
endif()
