# Loops that a compiler can widen, once more for each wider register that it knows. The program takes the widest one
# that the processor runs.
include(CheckCXXSourceCompiles)

if(MSVC)
  set(lanes_avx2 /arch:AVX2)
  set(lanes_avx512 /arch:AVX512)
else()
  set(lanes_avx2 -mavx2)
  set(lanes_avx512 -mavx512f -mavx512dq -mavx512vl -mprefer-vector-width=512)
endif()

set(CMAKE_REQUIRED_FLAGS ${lanes_avx512})
list(JOIN CMAKE_REQUIRED_FLAGS " " CMAKE_REQUIRED_FLAGS)
check_cxx_source_compiles("#if !defined(__AVX512F__) || !(defined(__x86_64__) || defined(_M_X64))
#error
#endif
int main() {}" VANTORELIX_WIDE_LANES)
unset(CMAKE_REQUIRED_FLAGS)

# The `loops` of a library, a source, once more for each width: base/instruction_sets.h chooses among them.
function(vantorelix_lanes library loops)
  if(NOT MSVC)
    # Choices without branches become blends only where no comparison may trap.
    set_source_files_properties(${loops} PROPERTIES COMPILE_OPTIONS -fno-trapping-math)
  endif()
  if(NOT VANTORELIX_WIDE_LANES)
    return()
  endif()
  foreach(lanes avx2 avx512)
    set(objects vantorelix_${library}_${lanes})
    add_library(${objects} OBJECT ${loops})
    target_compile_definitions(${objects} PRIVATE VANTORELIX_LANES=${lanes})
    target_compile_options(${objects} PRIVATE ${lanes_${lanes}})
    target_link_libraries(${objects} PRIVATE vantorelix_flags)
    target_sources(vantorelix_${library} PRIVATE $<TARGET_OBJECTS:${objects}>)
  endforeach()
endfunction()

if(VANTORELIX_WIDE_LANES)
  target_compile_definitions(vantorelix_flags INTERFACE VANTORELIX_WIDE_LANES)
endif()
