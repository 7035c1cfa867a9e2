# cmake -DSOURCE_DIR=<project> -P system_calls.cmake
# Fails when code above the platform layer talks to the operating system
# itself: an include of a POSIX, X11 or Win32 header, or a call of the POSIX
# process, environment or X11 functions. The windows, the subsystems and the
# programs must build for Windows and Linux alike, so such calls belong in
# src/platform (and the engine's own OS layer, src/jet/store/os_*.cpp).
set(headers "(unistd|fcntl|pthread|dlfcn|spawn|termios|dirent|pwd|poll|signal|windows|shlobj|shellapi|io|objbase|oleauto)\\.h|sys/|X11/")
set(calls "(getpid|getppid|popen|pclose|setenv|unsetenv|fork|execv[pe]*|waitpid|kill|usleep|nanosleep|XOpenDisplay|XSendEvent|ShellExecute[AW]?|CreateProcess[AW]?)[ \t]*\\(")
file(GLOB_RECURSE files ${SOURCE_DIR}/src/*.h ${SOURCE_DIR}/src/*.cpp ${SOURCE_DIR}/app/*.h ${SOURCE_DIR}/app/*.cpp)
set(bad "")
foreach(f IN LISTS files)
  if(f MATCHES "/src/platform/" OR f MATCHES "/src/jet/store/os_[a-z0-9]+\\.cpp$")
    continue()
  endif()
  file(STRINGS ${f} lines REGEX "^[ \t]*#[ \t]*include[ \t]*<(${headers})")
  file(STRINGS ${f} more REGEX "(^|[^A-Za-z0-9_.>])(::)?${calls}")
  foreach(line IN LISTS lines more)
    # std::signal and friends of <csignal> are the language's, not POSIX's.
    if(NOT line MATCHES "std::")
      file(RELATIVE_PATH rel ${SOURCE_DIR} ${f})
      string(STRIP "${line}" line)
      list(APPEND bad "${rel}: ${line}")
    endif()
  endforeach()
endforeach()
if(bad)
  list(JOIN bad "\n" text)
  message(FATAL_ERROR "Calls of the operating system above platform/:\n${text}")
endif()
