// The file that the operator's configuration is kept in: read before the agent starts, written when
// the operator says so. Its form is that of OperatorConfig; comments are allowed.
#pragma once

#include <string>

#include "host/OperatorConfig.h"

namespace Host {

class ConfigFile {
 public:
   static constexpr size_t maxBytes = 1024 * 1024;

   // A file that is missing stands for the defaults, but not one that is `required`.
   ConfigFile(std::string path, bool required) : path_(std::move(path)), required_(required) {}

   const std::string& path() const { return path_; }

   // Writes what the file holds into the entities. Throws StartError, which names file, line and
   // field, and then nothing has changed.
   void load(const OperatorConfig& config) const;
   // Whether saving would leave the file as it is.
   bool holds(const OperatorConfig& config) const;
   // Replaces the file as a whole, durably. Throws StartError.
   void save(const OperatorConfig& config) const;

   // The same of a text. `name` is what the file is called in errors.
   static std::function<void()> decode(const std::string& text, const std::string& name,
                                       const OperatorConfig& config);
   static std::string encode(const OperatorConfig& config);

 private:
   const std::string path_;
   const bool required_;
};

}  // namespace Host
