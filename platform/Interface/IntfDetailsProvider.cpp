#include "Interface/IntfDetailsProvider.h"

namespace Intf {

const IntfDetailsProvider* intfDetailsProvider(
    const Rex::Ptr<Interface::IntfStatus const>& intfStatus) {
   static const IntfDetailsProvider provider;
   return intfStatus && intfStatus->ifIndex() != 0 ? &provider : nullptr;
}

}  // namespace Intf
