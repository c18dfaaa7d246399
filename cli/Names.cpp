#include "cli/Names.h"

#include <fmt/format.h>

namespace LldpCli {

const char* findName(std::span<const Name> names, unsigned number) {
   for (const Name& entry : names) {
      if (entry.number == number) return entry.name;
   }
   return nullptr;
}

std::string nameOf(std::span<const Name> names, unsigned number) {
   const char* name = findName(names, number);
   return name ? name : fmt::format("reserved {}", number);
}

Json bitNames(std::span<const char* const> names, unsigned bits) {
   Json list = Json::array();
   for (unsigned bit = 0; bits >> bit; ++bit) {
      if (!(bits >> bit & 1)) continue;
      list.push_back(bit < names.size() ? names[bit] : fmt::format("Reserved {}", bit));
   }
   return list;
}

std::string listWords(const Json& names) {
   std::string words;
   for (const Json& name : names) words += (words.empty() ? "" : ", ") + name.get<std::string>();
   return words.empty() ? "none" : words;
}

std::string flagWords(const Json& view, std::initializer_list<const char*> flags) {
   std::string words;
   for (const char* flag : flags) {
      words += fmt::format("{}{}{}", words.empty() ? "" : ", ",
                           view.at(flag).get<bool>() ? "" : "not ", flag);
   }
   return words;
}

}  // namespace LldpCli
