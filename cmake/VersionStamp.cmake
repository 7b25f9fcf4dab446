# Writes the build stamp: VERNUM:MM/DD/YYYY(revision:changeset). A tree that is
# no checkout has revision 0 and a changeset of zeros.
set(revision 0)
set(changeset 000000000000)
execute_process(COMMAND git -C ${SOURCE_DIR} rev-list --count HEAD
    OUTPUT_VARIABLE count RESULT_VARIABLE failed ERROR_QUIET OUTPUT_STRIP_TRAILING_WHITESPACE)
if(NOT failed)
    set(revision ${count})
    execute_process(COMMAND git -C ${SOURCE_DIR} rev-parse --short=12 HEAD
        OUTPUT_VARIABLE changeset ERROR_QUIET OUTPUT_STRIP_TRAILING_WHITESPACE)
    string(SUBSTRING "${changeset}" 0 12 changeset)
endif()
string(TIMESTAMP today "%m/%d/%Y")
set(text "#define VX_VERSION_STAMP \"VERNUM:${today}(${revision}:${changeset})\"\n")
if(EXISTS ${OUTPUT})
    file(READ ${OUTPUT} old)
endif()
if(NOT "${old}" STREQUAL "${text}")
    file(WRITE ${OUTPUT} "${text}")
endif()
