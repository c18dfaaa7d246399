#include "Statestore/Path.h"

#include <fmt/format.h>

#include <cctype>

namespace Statestore {
namespace {

int hexDigit(char c) {
   if (c >= '0' && c <= '9') return c - '0';
   if (c >= 'a' && c <= 'f') return c - 'a' + 10;
   if (c >= 'A' && c <= 'F') return c - 'A' + 10;
   return -1;
}

bool decode(const std::string& step, std::string& decoded) {
   for (size_t i = 0; i < step.size(); ++i) {
      if (step[i] != '%') {
         decoded += step[i];
         continue;
      }
      if (i + 2 >= step.size()) return false;
      int high = hexDigit(step[i + 1]);
      int low = hexDigit(step[i + 2]);
      if (high < 0 || low < 0) return false;
      decoded += static_cast<char>(high << 4 | low);
      i += 2;
   }
   return true;
}

bool standsForItself(char c) {
   return std::isalnum(static_cast<unsigned char>(c)) ||
          std::string_view("-._~!$&'()*+,;=:@").find(c) != std::string_view::npos;
}

}  // namespace

Steps splitPath(std::string_view path) {
   Steps steps;
   while (!path.empty()) {
      size_t slash = path.find('/');
      std::string_view step = path.substr(0, slash);
      if (!step.empty()) steps.emplace_back(step);
      path.remove_prefix(slash == std::string_view::npos ? path.size() : slash + 1);
   }
   return steps;
}

std::optional<Steps> decodePath(std::string_view path) {
   Steps steps;
   for (const std::string& step : splitPath(path)) {
      if (!decode(step, steps.emplace_back())) return std::nullopt;
   }
   return steps;
}

std::string encodeStep(std::string_view step) {
   std::string encoded;
   for (char c : step) {
      if (standsForItself(c)) {
         encoded += c;
      } else {
         encoded += fmt::format("%{:02X}", static_cast<unsigned char>(c));
      }
   }
   return encoded;
}

std::string encodePath(const Steps& steps) {
   std::string path;
   for (const std::string& step : steps) {
      if (!path.empty()) path += '/';
      path += encodeStep(step);
   }
   return path;
}

}  // namespace Statestore
