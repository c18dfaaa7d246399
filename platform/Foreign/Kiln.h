// Helpers of a process.
#pragma once

namespace Kiln {

// Raises the limit of open files to `files`, or as far as the process may. Returns the limit that
// then is in force; a higher one stays.
unsigned long setFdLimit(unsigned long files);

}  // namespace Kiln
