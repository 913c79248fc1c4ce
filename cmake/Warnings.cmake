# What every target of ours is compiled with. Warnings are errors where CMAKE_COMPILE_WARNING_AS_ERROR
# says so, as our presets do.
add_library(kestrail_options INTERFACE)
target_compile_features(kestrail_options INTERFACE cxx_std_20)
target_compile_options(
  kestrail_options
  INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Wnon-virtual-dtor -Wold-style-cast)
target_include_directories(kestrail_options INTERFACE ${PROJECT_SOURCE_DIR} ${PROJECT_BINARY_DIR})
if(CMAKE_CXX_COMPILER_ID MATCHES Clang)
  # As g++, whose conversions leave signs out.
  target_compile_options(kestrail_options INTERFACE -Wno-sign-conversion)
endif()
if(KESTRAIL_SANITIZE)
  if(KESTRAIL_SANITIZE STREQUAL thread)
    set(sanitizers -fsanitize=thread)
  else()
    set(sanitizers -fsanitize=address,undefined -fno-sanitize-recover=undefined)
  endif()
  target_compile_options(kestrail_options INTERFACE ${sanitizers} -fno-omit-frame-pointer)
  target_link_options(kestrail_options INTERFACE ${sanitizers})
  if(CMAKE_CXX_COMPILER_ID STREQUAL GNU)
    # Instrumented, the standard library's own headers look as if they used what is not initialised.
    target_compile_options(kestrail_options INTERFACE -Wno-maybe-uninitialized)
  endif()
endif()
if(KESTRAIL_FUZZ)
  # Entry points of the host are called through types of our own.
  target_compile_options(kestrail_options INTERFACE -fsanitize=fuzzer-no-link
                                                    -fno-sanitize=function)
endif()
