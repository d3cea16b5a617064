# Every library from outside, found once. The targets to link:
#
#   component    re2::re2  tsl::ordered_map  Boost::headers
#   native host  fmt::fmt  spdlog::spdlog  SQLiteCpp  SQLite::SQLite3
#                nlohmann_json::nlohmann_json  tomlplusplus::tomlplusplus  yaml-cpp
#                pugixml::pugixml  utf8cpp  CLI11::CLI11  Threads::Threads
#   tests        GTest::gtest  GTest::gtest_main  GTest::gmock
#   bench        benchmark::benchmark
#   python       Python::Module; Python_EXECUTABLE runs the tests

find_package(Threads REQUIRED)
find_package(RE2 REQUIRED)
find_package(tsl-ordered-map REQUIRED)
find_package(Boost 1.74 REQUIRED)

if(KESTRIX_PROGRAM OR KESTRIX_TESTS OR KESTRIX_BENCH)
  find_package(fmt REQUIRED)
endif()

if(KESTRIX_PROGRAM)
  find_package(spdlog REQUIRED)
  find_package(SQLite3 REQUIRED)
  find_package(B2 REQUIRED)
  find_package(SQLiteCpp REQUIRED)
  find_package(nlohmann_json REQUIRED)
  find_package(tomlplusplus REQUIRED)
  find_package(yaml-cpp REQUIRED)
  find_package(pugixml REQUIRED)
  find_package(utf8cpp REQUIRED)
  find_package(CLI11 REQUIRED)
endif()

if(KESTRIX_TESTS)
  find_package(GTest REQUIRED)
endif()

if(KESTRIX_BENCH)
  find_package(benchmark REQUIRED)
endif()

if(KESTRIX_PYTHON)
  find_package(Python 3.9 COMPONENTS Interpreter Development.Module)
  if(NOT Python_FOUND)
    message(WARNING "The Python module is left out: it needs python3-dev.")
    set(KESTRIX_PYTHON OFF)
  endif()
endif()
