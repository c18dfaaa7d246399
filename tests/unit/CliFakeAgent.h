// A management API that serves what a test laid out before: entities by their paths and canned
// answers, over a socket of its own.
#pragma once

#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

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
   // To what is asked: "/v1/agent" stands for "GET /v1/agent". `heads` are further header lines.
   void answer(const std::string& target, const std::string& status, const std::string& body,
               const std::string& heads = "");
   // Likewise, but once, before the answer that stays.
   void answerOnce(const std::string& target, const std::string& status, const std::string& body,
                   const std::string& heads = "");
   // A stream of these octets, and then the end.
   void stream(const std::string& target, const std::string& octets);
   // Whatever is asked, these octets come, and then the end. Before start().
   void alwaysSay(const std::string& octets) { always_ = octets; }
   // Takes connections from here on, in a thread of its own.
   void start(const std::string& name = "api.sock");
   // What came, with method and body: "POST /v1/changes {...}".
   std::vector<std::string> requests();

 private:
   void run();
   void converse(int connection);
   std::string replyTo(const std::string& request);

   std::string folder_;
   std::string socketPath_;
   std::string listening_;
   int listener_ = -1;
   std::map<std::string, std::string> answers_;  // by target
   std::map<std::string, std::string> first_;
   std::string always_;
   std::mutex mutex_;
   std::vector<std::string> requests_;
   std::thread thread_;
};
