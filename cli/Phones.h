// The addresses that are classified as telephones, or by the operator as none.
#pragma once

#include <string_view>

namespace LldpCli {

inline constexpr std::string_view phonesConfigPath = "identity/nbrClassification/cliConfig";
inline constexpr std::string_view phonesStatusPath = "identity/nbrClassification/status";

}  // namespace LldpCli
