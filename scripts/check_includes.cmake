cmake_minimum_required(VERSION 3.25)

# Fails when a source includes a file of a folder that is not below its own, when a source of the
# program includes anything but the C++ standard library and the program itself, tests for a platform,
# or says how wide a character is, which core/platform_types.h alone does.

# Lowest first. Nothing includes the toolkit's folders, which are loaded as a module.
set(program core search browser screens settings engine shell)
set(folders ${program}
  platform/text platform/diagnostics platform/io platform/moves platform/tree platform/seam platform/files
  platform/registry/text platform/registry platform/display platform/sample platform/device platform/report platform/command_line
  platform/host platform
  platform/qt/base platform/qt/controls platform/qt/screen platform/qt/desktop platform/qt)

set(exceptions
  # The entry starts what stands on everything else.
  "core/win_main.cpp includes engine/apply_sequence.h"
  "core/win_main.cpp includes shell/interactive_run.h"
  # Dialogs and pages belong to the main window, and are made as it is.
  "browser/browse_dialog.cpp includes shell/window_creation.h"
  "search/search_indicator.cpp includes shell/window_creation.h"
  "search/search_indicator.cpp includes shell/main_windows.h"
  "screens/control_dispatch.cpp includes shell/main_windows.h"
  "screens/screens.cpp includes shell/main_windows.h")

set(faults "")
set(needed "")

# Whether `source` of the folder number `own` may include the file `included`.
function(check_order source own included)
  get_filename_component(folder ${included} DIRECTORY)
  list(FIND folders "${folder}" other)
  if(other GREATER own OR other EQUAL -1)
    set(arrow "${source} includes ${included}")
    if(arrow IN_LIST exceptions)
      set(needed ${needed} ${arrow} PARENT_SCOPE)
    else()
      set(faults ${faults} "${arrow}, which is not below it" PARENT_SCOPE)
    endif()
  endif()
endfunction()

# What a line of a source of the program must not have.
function(check_program source line)
  if(line MATCHES "^[ \t]*#[ \t]*(if|ifdef|ifndef|elif)" OR
      line MATCHES "^[ \t]*#[ \t]*include[ \t]*<[a-z_]+[^a-z_>]")
    set(faults ${faults} "${source}: ${line}" PARENT_SCOPE)
  endif()
  string(REGEX REPLACE "//.*" "" code "${line}")
  if(NOT source STREQUAL "core/platform_types.h" AND
      code MATCHES "(^|[^A-Za-z0-9_])(u[\"']|u16string)")
    set(faults ${faults} "${source}: ${line}" PARENT_SCOPE)
  endif()
endfunction()

set(own 0)
foreach(folder IN LISTS folders)
  file(GLOB sources RELATIVE ${ROOT} ${ROOT}/${folder}/*.h ${ROOT}/${folder}/*.cpp)
  foreach(source IN LISTS sources)
    file(STRINGS ${ROOT}/${source} lines REGEX "^[ \t]*#|u[\"']|u16string")
    foreach(line IN LISTS lines)
      if(line MATCHES "^[ \t]*#[ \t]*include[ \t]*\"([^\"]+)\"")
        check_order(${source} ${own} ${CMAKE_MATCH_1})
      elseif(folder IN_LIST program)
        check_program(${source} "${line}")
      endif()
    endforeach()
  endforeach()
  math(EXPR own "${own} + 1")
endforeach()

foreach(exception IN LISTS exceptions)
  if(NOT exception IN_LIST needed)
    list(APPEND faults "no longer so: ${exception}")
  endif()
endforeach()
if(faults)
  list(JOIN faults "\n" faults)
  message(FATAL_ERROR "Includes run down only, and the program says nothing of a platform:\n${faults}")
endif()
