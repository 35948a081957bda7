# The page shows a program that is compiled and run, as it is.
file(READ ${PAGE} page)
file(READ ${EXAMPLE} example)
string(FIND "${page}" "```cpp\n${example}```" place)
if(place EQUAL -1)
  message(FATAL_ERROR "${PAGE} does not show ${EXAMPLE} as it is")
endif()
