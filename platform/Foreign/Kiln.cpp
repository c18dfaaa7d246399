#include "Foreign/Kiln.h"

#include <sys/resource.h>

#include <algorithm>

namespace Kiln {

unsigned long setFdLimit(unsigned long files) {
   rlimit limit{};
   if (getrlimit(RLIMIT_NOFILE, &limit) < 0 || limit.rlim_cur >= files) return limit.rlim_cur;
   rlimit wanted{files, std::max<rlim_t>(limit.rlim_max, files)};
   if (setrlimit(RLIMIT_NOFILE, &wanted) == 0) return wanted.rlim_cur;
   // Only a privileged process raises the hard limit.
   limit.rlim_cur = std::min<rlim_t>(limit.rlim_max, files);
   setrlimit(RLIMIT_NOFILE, &limit);
   return limit.rlim_cur;
}

}  // namespace Kiln
