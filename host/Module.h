// The agent as a loadable module.
#pragma once

#include <string>

#include "Foreign/CAgent.h"

namespace Host {

class Module {
 public:
   // Loads the module, for good: what it registered is used until the process ends. Empty: the one
   // beside the program, or in the folder ../lib of it. Throws StartError.
   explicit Module(const std::string& path);

   AgentBase::CAgent::Ptr makeAgent(const char* name) const;
   void cleanUp(AgentBase::CAgent& agent) const { doCleanup_(&agent); }

 private:
   // The module's entry points. The new agent has one reference, which becomes the caller's.
   using AgentFactory = AgentBase::CAgent* (*)(const char* name);
   using DoCleanup = void (*)(AgentBase::CAgent* agent);

   AgentFactory agentFactory_;
   DoCleanup doCleanup_;
};

}  // namespace Host
