// Details of an interface that depend on its kind.
#pragma once

#include "Interface/IntfStatus.h"

namespace Intf {

struct IntfDetailsProvider {
   // The interface's number.
   int32_t ifIndex(const Rex::Ptr<Interface::IntfStatus const>& intfStatus) const {
      return intfStatus->ifIndex();
   }
};

// Null for an interface that nobody numbered.
const IntfDetailsProvider* intfDetailsProvider(
    const Rex::Ptr<Interface::IntfStatus const>& intfStatus);

}  // namespace Intf
