# The pages show programs that are compiled and run, as they are.
foreach(pair README.md:title docs/collections.md:collections docs/object-graphs.md:graph docs/formatters.md:formatters
        docs/documents.md:documents docs/files.md:files docs/threads.md:threads docs/threads.md:lifetimes docs/threads.md:waiting
        docs/threads.md:hosts/epoll docs/threads.md:hosts/glib docs/threads.md:hosts/qt.h docs/editor.md:editor
        docs/oddities.md:oddities)
  string(REPLACE ":" ";" pair ${pair})
  list(GET pair 0 page)
  list(GET pair 1 example)
  file(READ ${ROOT}/${page} text)
  if(NOT example MATCHES "[.]")
    string(APPEND example .cpp)
  endif()
  file(READ ${ROOT}/examples/${example} program)
  string(FIND "${text}" "```cpp\n${program}```" place)
  if(place EQUAL -1)
    message(SEND_ERROR "${page} does not show ${example} as it is")
  endif()
endforeach()
