// What the switch is, in words.
#pragma once

#include "Rex/Entity.h"
#include "Rex/StateMachine.h"
#include "Rex/String.h"

namespace EntityMib {

struct Status : Rex::Entity {
   REX_ENTITY(Status, Rex::Entity)
   // Product, hardware and software of the whole system.
   REX_ATTRIBUTE(Rex::String, description)
   REX_ENTITY_END()
};

// The system's description as it is told to others.
struct SysDescr : Rex::Entity {
   REX_ENTITY(SysDescr, Rex::Entity)
   REX_ATTRIBUTE(Rex::String, description)
   REX_ENTITY_END()
};

// Keeps a description filled from the status.
class SysDescrSm : public Rex::StateMachine {
 public:
   SysDescrSm(const Rex::Ptr<Status const>& status, const Rex::Ptr<SysDescr>& sysDescr);

 private:
   void handleDescription();

   const Rex::Ptr<Status const> status_;
   const Rex::Ptr<SysDescr> sysDescr_;
};

}  // namespace EntityMib
