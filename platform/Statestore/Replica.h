#pragma once
#include <functional>
#include <string>
#include <vector>
namespace Statestore {
class Replica {
 public:
   void loaded(const std::vector<std::string>& paths, std::function<void(bool ofTheirTypes)> then);
};
}  // namespace Statestore
