// Folders and files that the host keeps.
#pragma once

#include <string>

namespace Host {

// Makes a folder if there is none. Throws StartError, whose words begin with `purpose`, when it
// cannot be made or written to.
void writableFolder(const std::string& folder, const std::string& purpose);

// Replaces a file by `content` as a whole: whoever reads it finds the old or the new one, also
// after a crash. Throws StartError.
void writeWhole(const std::string& path, const std::string& content);

}  // namespace Host
