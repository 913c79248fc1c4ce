# What the tables of calls are turned into: classes, factories, host entry tables, executor cases and
# enumerant names, all in the build folder.
find_package(Python3 REQUIRED COMPONENTS Interpreter)

set(callgen ${PROJECT_SOURCE_DIR}/tools/callgen)
set(generated ${PROJECT_BINARY_DIR}/generated)
file(MAKE_DIRECTORY ${generated}/calls ${generated}/exec ${generated}/host ${generated}/slicing
     ${generated}/state)

# Parts of about the same size, so that they compile side by side.
set(parts_egl 1)
set(parts_es1 3)
set(parts_es2 3)
set(parts_es3 3)
set(parts_ext 2)
set(families egl es1 es2 es3 ext)
foreach(family ${families})
  set(table ${PROJECT_SOURCE_DIR}/calls/${family}/${family}.calls)
  list(APPEND tables ${table})
  set(sources ${generated}/calls/${family}_factory.cpp)
  foreach(part RANGE 1 ${parts_${family}})
    list(APPEND sources ${generated}/calls/${family}_calls_${part}.cpp)
  endforeach()
  add_custom_command(
    OUTPUT ${generated}/calls/${family}_calls.h ${sources}
    COMMAND Python3::Interpreter -B ${callgen}/classes.py ${table} ${generated}/calls
            ${parts_${family}}
    DEPENDS ${callgen}/classes.py ${callgen}/table.py ${table}
    VERBATIM)
  list(APPEND KESTRAIL_CALL_SOURCES ${sources})
endforeach()

set(effects ${generated}/slicing/effects.cpp)
set(rules ${PROJECT_SOURCE_DIR}/calls/effects.rules)
add_custom_command(
  OUTPUT ${effects}
  COMMAND Python3::Interpreter -B ${callgen}/effects.py ${effects} ${rules} ${tables}
  DEPENDS ${callgen}/effects.py ${callgen}/table.py ${rules} ${tables}
  VERBATIM)
list(APPEND KESTRAIL_CALL_SOURCES ${effects})

add_custom_command(
  OUTPUT ${generated}/calls/identifiers.h
  COMMAND Python3::Interpreter -B ${callgen}/identifiers.py ${generated}/calls/identifiers.h
          ${tables}
  DEPENDS ${callgen}/identifiers.py ${callgen}/table.py ${tables}
  VERBATIM)
list(APPEND KESTRAIL_CALL_SOURCES ${generated}/calls/identifiers.h)

add_custom_command(
  OUTPUT ${generated}/calls/gl_enum_names.cpp
  COMMAND Python3::Interpreter -B ${callgen}/enum_names.py
          ${PROJECT_SOURCE_DIR}/calls/text/gl_enumerants.txt ${generated}/calls/gl_enum_names.cpp
  DEPENDS ${callgen}/enum_names.py ${PROJECT_SOURCE_DIR}/calls/text/gl_enumerants.txt
  VERBATIM)
list(APPEND KESTRAIL_CALL_SOURCES ${generated}/calls/gl_enum_names.cpp)

foreach(family ${families})
  set(table ${PROJECT_SOURCE_DIR}/calls/${family}/${family}.calls)
  set(cases ${generated}/exec/${family}_cases)
  add_custom_command(
    OUTPUT ${cases}.h ${cases}.cpp
    COMMAND Python3::Interpreter -B ${callgen}/executor.py ${table} ${cases}.h ${cases}.cpp
    DEPENDS ${callgen}/executor.py ${callgen}/table.py ${table}
    VERBATIM)
  list(APPEND KESTRAIL_EXECUTOR_SOURCES ${cases}.cpp)
  set(source ${generated}/state/${family}_updates.cpp)
  add_custom_command(
    OUTPUT ${source}
    COMMAND Python3::Interpreter -B ${callgen}/updates.py ${table} ${source}
    DEPENDS ${callgen}/updates.py ${callgen}/table.py ${table}
    VERBATIM)
  list(APPEND KESTRAIL_CALL_SOURCES ${source})
endforeach()

set(host_headers)
foreach(table egl es1 es2 es3)
  list(APPEND host_headers ${generated}/host/${table}_entries.h)
endforeach()
add_custom_command(
  OUTPUT ${host_headers}
  COMMAND Python3::Interpreter -B ${callgen}/host_tables.py ${PROJECT_SOURCE_DIR}/calls
          ${generated}/host
  DEPENDS ${callgen}/host_tables.py ${callgen}/table.py ${tables}
  VERBATIM)
# Everything that includes a generated header waits for it.
add_custom_target(kestrail_host_tables DEPENDS ${host_headers})

# What the recording library puts in the places of the host's entries.
find_path(KESTRAIL_PUBLISHED_HEADERS EGL/egl.h REQUIRED)
mark_as_advanced(KESTRAIL_PUBLISHED_HEADERS)
set(parts_recorder 4)
set(KESTRAIL_RECORDER_SOURCES ${generated}/recorder/library/entries.cpp)
foreach(part RANGE 1 ${parts_recorder})
  list(APPEND KESTRAIL_RECORDER_SOURCES ${generated}/recorder/library/entries_${part}.cpp)
endforeach()
set(by_hand ${PROJECT_SOURCE_DIR}/recorder/library/by_hand.h)
add_custom_command(
  OUTPUT ${generated}/recorder/library/entries.h ${KESTRAIL_RECORDER_SOURCES}
  COMMAND
    Python3::Interpreter -B ${callgen}/recorder.py ${PROJECT_SOURCE_DIR}/calls
    ${KESTRAIL_PUBLISHED_HEADERS} ${by_hand} ${generated}/recorder/library ${parts_recorder}
  DEPENDS ${callgen}/recorder.py ${callgen}/prototypes.py ${callgen}/table.py ${by_hand}
          ${PROJECT_SOURCE_DIR}/calls/egl/egl.calls ${PROJECT_SOURCE_DIR}/calls/es1/es1.calls
          ${PROJECT_SOURCE_DIR}/calls/es2/es2.calls ${PROJECT_SOURCE_DIR}/calls/es3/es3.calls
          ${PROJECT_SOURCE_DIR}/calls/ext/ext.calls
  VERBATIM)
