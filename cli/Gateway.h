// A process that serves the management API of a shared state store for one command: `lldp-agentd
// --gateway`. It ends with the command, whatever becomes of that, and neither leaves a file.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <optional>
#include <string>

namespace LldpCli {

struct Session;

// Where a state store is; none: the agent's own socket counts.
struct StoreAddress {
   std::string url;
   std::string passwordFile;
   explicit operator bool() const { return !url.empty(); }
};

class Gateway {
 public:
   // Returns when it serves. Throws Failure when it cannot, or says nothing for `patience`.
   Gateway(const StoreAddress& store, std::chrono::milliseconds patience);
   ~Gateway();
   Gateway(const Gateway&) = delete;
   Gateway& operator=(const Gateway&) = delete;

   // Of the management API, for this process alone.
   std::string socketPath() const;
   // Ends it in order. Throws Failure when the store may not have what was changed.
   void finish();
   // Why it has ended by itself, if it has.
   std::optional<std::string> fault();

 private:
   enum class Heard { line, nothing, end };
   Heard hear(std::chrono::milliseconds patience);
   void awaitReady(std::chrono::milliseconds patience);
   void close();

   int place_ = -1;    // the listening socket's file, which has no name any more
   int control_ = -1;  // what it says; its end is the gateway's
   pid_t process_ = -1;
   std::string pending_;  // of a line whose end has not come
   std::string line_;     // the last one
};

// Where the management API is that the commands of a session use. Starts the gateway of its store,
// if it has one. Throws Failure.
std::string agentSocket(Session& session);

}  // namespace LldpCli
