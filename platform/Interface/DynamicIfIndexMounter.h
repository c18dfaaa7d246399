// Asks the state store for what the lookup of interface indices needs. Here an interface's index
// stands in its IntfStatus, which the agent has mounted already, so nothing is left to ask for.
#pragma once

#include "Rex/Ptr.h"
#include "Rex/String.h"

namespace Interface {

class DynamicIfIndexMounter : public Rex::PtrInterface {
 public:
   DynamicIfIndexMounter(const Rex::String& name, Rex::Ptr<Rex::PtrInterface> entityManager)
       : name_(name), entityManager_(std::move(entityManager)) {}

   const Rex::String& name() const { return name_; }
   const Rex::Ptr<Rex::PtrInterface>& entityManager() const { return entityManager_; }

 private:
   const Rex::String name_;
   const Rex::Ptr<Rex::PtrInterface> entityManager_;
};

}  // namespace Interface
