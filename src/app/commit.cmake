# SPDX-License-Identifier: MIT
# Writes COMMIT_FILE with the commit of SOURCE; run by every build, and quiet when nothing changed.
execute_process(COMMAND git -C ${SOURCE} describe --always --abbrev=9 --dirty=-changed --exclude=*
  OUTPUT_VARIABLE commit OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET RESULT_VARIABLE failed)
if(failed OR commit STREQUAL "")
  set(commit unknown)
endif()
configure_file(${CMAKE_CURRENT_LIST_DIR}/commit.cpp.in ${COMMIT_FILE} @ONLY)
