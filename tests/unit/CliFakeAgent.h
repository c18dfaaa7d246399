// A management API that serves what a test laid out before: entities by their paths and canned
// answers, over a socket of its own.
#pragma once

#include <map>
#include <string>
#include <thread>

#include "Rex/Entity.h"

class CliFakeAgent {
 public:
   // Serves nothing but /v1/agent: cell 1, at `now` seconds on its clock.
   explicit CliFakeAgent(double now = 1000);
   ~CliFakeAgent();
   CliFakeAgent(const CliFakeAgent&) = delete;
   CliFakeAgent& operator=(const CliFakeAgent&) = delete;

   const std::string& socketPath() const { return socketPath_; }

   // Serves the entity as it is now, and each of its members below it. Before start().
   void serve(const std::string& path, const Rex::Entity& entity);
   void answer(const std::string& target, const std::string& status, const std::string& body);
   // Whatever is asked, these octets come, and then the end. Before start().
   void alwaysSay(const std::string& octets) { always_ = octets; }
   // Takes connections from here on, in a thread of its own.
   void start();

 private:
   void run();
   void converse(int connection);
   std::string replyTo(const std::string& request) const;

   std::string folder_;
   std::string socketPath_;
   int listener_ = -1;
   std::map<std::string, std::string> answers_;  // by target
   std::string always_;
   std::thread thread_;
};
