# framewright.h includes each public header, and no other.
file(STRINGS ${HEADERS} headers)
set(expected)
foreach(header IN LISTS headers)
  file(RELATIVE_PATH name ${ROOT} ${header})
  list(APPEND expected ${name})
endforeach()
list(REMOVE_ITEM expected framewright/framewright.h)

file(STRINGS ${ROOT}/framewright/framewright.h lines REGEX "^#include \"")
string(REGEX REPLACE "#include \"([^\"]+)\"" "\\1" included "${lines}")

set(missing ${expected})
list(REMOVE_ITEM missing ${included})
set(surplus ${included})
list(REMOVE_ITEM surplus ${expected})
if(missing OR surplus)
  message(FATAL_ERROR "framewright.h lacks: ${missing}\nframewright.h includes what is not public: ${surplus}")
endif()
