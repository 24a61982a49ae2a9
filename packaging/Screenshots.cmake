# kestrune_screenshots(ADDRESS RESULT): the pictures of docs/pictures as the metainfo lists them, if they lie at this web
# address; nothing without an address.
function(kestrune_screenshots address result)
  set(pictures
    "main:The main window while a song is recorded"
    "now:What plays, in letters to read from afar"
    "channels:All channels and what they play"
    "shelf:What just played and was not kept"
    "schedule:The timer schedule"
    "first-run:The first run: the input that the radio is connected to")
  set(list "")
  set(kind " type=\"default\"")
  foreach(picture IN LISTS pictures)
    string(REGEX MATCH "^([^:]+):(.*)$" picture "${picture}")
    string(APPEND list
      "    <screenshot${kind}>\n"
      "      <caption>${CMAKE_MATCH_2}</caption>\n"
      "      <image>${address}/${CMAKE_MATCH_1}.png</image>\n"
      "    </screenshot>\n")
    set(kind "")
  endforeach()
  if(address)
    set(${result} "  <screenshots>\n${list}  </screenshots>\n" PARENT_SCOPE)
  else()
    set(${result} "" PARENT_SCOPE)
  endif()
endfunction()
