# The loops of the spacing colours, once more for each wider register that the compiler knows. The program takes the
# widest one that the processor runs.
include(CheckCXXSourceCompiles)

set(lane_loops ${PROJECT_SOURCE_DIR}/engine/colour/lane_loops.cpp)
if(MSVC)
  set(lanes_avx2 /arch:AVX2)
  set(lanes_avx512 /arch:AVX512)
else()
  set(lanes_avx2 -mavx2)
  set(lanes_avx512 -mavx512f -mavx512dq -mavx512vl -mprefer-vector-width=512)
  # Choices without branches become blends only where no comparison may trap.
  set_source_files_properties(${lane_loops} PROPERTIES COMPILE_OPTIONS -fno-trapping-math)
endif()

set(CMAKE_REQUIRED_FLAGS ${lanes_avx512})
list(JOIN CMAKE_REQUIRED_FLAGS " " CMAKE_REQUIRED_FLAGS)
check_cxx_source_compiles("#if !defined(__AVX512F__) || !(defined(__x86_64__) || defined(_M_X64))
#error
#endif
int main() {}" VANTORELIX_WIDE_LANES)
unset(CMAKE_REQUIRED_FLAGS)

if(VANTORELIX_WIDE_LANES)
  foreach(lanes avx2 avx512)
    add_library(vantorelix_lanes_${lanes} OBJECT ${lane_loops})
    target_compile_definitions(vantorelix_lanes_${lanes} PRIVATE VANTORELIX_LANES=${lanes})
    target_compile_options(vantorelix_lanes_${lanes} PRIVATE ${lanes_${lanes}})
    target_link_libraries(vantorelix_lanes_${lanes} PRIVATE vantorelix_flags)
    target_sources(vantorelix_engine PRIVATE $<TARGET_OBJECTS:vantorelix_lanes_${lanes}>)
  endforeach()
  set_source_files_properties(${PROJECT_SOURCE_DIR}/engine/colour/lanes.cpp PROPERTIES
                              COMPILE_DEFINITIONS VANTORELIX_WIDE_LANES)
endif()
