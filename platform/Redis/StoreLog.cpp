#include "Redis/StoreLog.h"

#include <array>

#include "Rex/Printable.h"

namespace Redis {
namespace {

constexpr int error = 3;
constexpr int warning = 4;
constexpr int notice = 5;

const Rex::LogHandle unreachable(
    "STATE_STORE_NOT_REACHED", warning, "State store %s is not reached: %s",
    "The server of the state store cannot be connected to, or does not answer.",
    "Check that redis-server runs and listens there, and that the URL of --store is right. The "
    "agent tries again by itself.",
    0, 1, 0);
const Rex::LogHandle lost(
    "STATE_STORE_LOST", warning, "State store %s is lost: %s",
    "The connection to the server of the state store ended, or the server stopped answering.",
    "Check that redis-server runs. The agent connects again by itself.", 0, 1, 0);
const Rex::LogHandle accessRefused(
    "STATE_STORE_ACCESS_REFUSED", error, "State store %s refuses access: %s",
    "The server wants another user or password, or has no database of that number.",
    "Correct the URL of --store or the file of --store-password-file, and restart the agent; or "
    "correct the server's configuration.",
    0, 1, 0);
const Rex::LogHandle reached("STATE_STORE_IN_USE", notice, "State store %s is in use",
                             "The server of the state store answers.", Rex::NoActionRequired, 0, 1,
                             0);
const Rex::LogHandle changesRefused(
    "STATE_STORE_REFUSES_CHANGES", error, "State store %s refuses changes: %s",
    "The server has no memory left, is a read-only replica, or cannot write its file.",
    "Give the server more memory (maxmemory), or name the server that takes changes.", 0, 1, 0);
const Rex::LogHandle changesTaken("STATE_STORE_TAKES_CHANGES", notice,
                                  "State store %s takes changes again",
                                  "The server refused changes before.", Rex::NoActionRequired, 0, 1,
                                  0);
const Rex::LogHandle entryMalformed(
    "STATE_STORE_ENTRY_MALFORMED", warning, "State store %s: entry %s is no change",
    "Something wrote to the list of changes (state:changes) what is none. It was passed over.",
    "Find the client that writes it, and correct it.", 300, 1, 0);

bool isAboutAccess(const std::string& why) {
   constexpr std::array codes{"WRONGPASS", "NOAUTH",       "NOPERM",
                              "ERR AUTH",  "ERR DB index", "ERR invalid DB index"};
   for (const char* code : codes) {
      if (why.starts_with(code)) return true;
   }
   return false;
}

}  // namespace

void StoreLog::broken(const std::string& why, bool wasUp) {
   works_ = false;
   tell(isAboutAccess(why) ? accessRefused : wasUp ? lost : unreachable, why);
}

void StoreLog::works() {
   if (works_) return;
   works_ = true;
   told_.clear();
   Rex::log(reached, Rex::String(store_));
}

void StoreLog::refused(const std::string& why) {
   if (refused_) return;
   refused_ = true;
   Rex::log(changesRefused, Rex::String(store_), Rex::String(Rex::printable(why)));
}

void StoreLog::taken() {
   if (!refused_) return;
   refused_ = false;
   Rex::log(changesTaken, Rex::String(store_));
}

void StoreLog::malformed(const std::string& id) {
   Rex::log(entryMalformed, Rex::String(store_), Rex::String(Rex::printable(id)));
}

void StoreLog::tell(const Rex::LogHandle& handle, const std::string& why) {
   // Whoever knows that it is lost need not hear that it cannot be reached.
   if (&handle == &unreachable && told_.contains(&lost)) return;
   if (!told_.insert(&handle).second) return;
   Rex::log(handle, Rex::String(store_), Rex::String(Rex::printable(why)));
}

}  // namespace Redis
