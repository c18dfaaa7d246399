#include "Statestore/Replica.h"
namespace Statestore {
void Replica::loaded(const std::vector<std::string>&, std::function<void(bool)> then) { then(true); }
}
