// Folders and files that the host keeps.
#pragma once

#include <optional>
#include <string>

namespace Host {

// Makes a folder if there is none. Throws StartError, whose words begin with `purpose`, when it
// cannot be made or written to.
void writableFolder(const std::string& folder, const std::string& purpose);

// The content of a file; nothing when there is none. Throws StartError for one that is longer than
// `maxBytes`, is no plain file, or cannot be read.
std::optional<std::string> readWhole(const std::string& path, size_t maxBytes);

// Replaces a file by `content` as a whole: whoever reads it finds the old or the new one, also
// after a crash. It keeps its owner and permissions, and where a link stands for it, the link.
// Throws StartError, and then the old file stands, unless the words are that the new one cannot be
// made durable.
void writeWhole(const std::string& path, const std::string& content);

}  // namespace Host
