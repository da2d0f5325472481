# How every target of the project is compiled.
add_library(framewright_options INTERFACE)
target_compile_features(framewright_options INTERFACE cxx_std_20)
target_compile_options(framewright_options INTERFACE
  -Wall -Wextra -Wpedantic
  -ffp-contract=off  # the same bits from every compiler and at every optimisation level
  $<$<BOOL:${FRAMEWRIGHT_WERROR}>:-Werror>)
if(FRAMEWRIGHT_SANITIZE)
  target_compile_options(framewright_options INTERFACE
    -fsanitize=${FRAMEWRIGHT_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  # The checks that it inserts make g++ see uninitialised values in the standard library where there are none.
  target_compile_options(framewright_options INTERFACE $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
  target_link_options(framewright_options INTERFACE -fsanitize=${FRAMEWRIGHT_SANITIZE})
endif()
