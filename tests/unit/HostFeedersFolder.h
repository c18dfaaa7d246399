// A folder of a test's own, gone with it.
#pragma once

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <string>

namespace Host {

struct TestFolder {
   TestFolder() {
      std::string pattern = testing::TempDir() + "host-XXXXXX";
      path = mkdtemp(pattern.data());
   }
   ~TestFolder() { std::filesystem::remove_all(path); }
   TestFolder(const TestFolder&) = delete;
   TestFolder& operator=(const TestFolder&) = delete;

   std::string path;
};

}  // namespace Host
