// Which interfaces exist as a device that this process can open. Kept by NetNsIntfStatusManagerSm.
#pragma once

#include <boost/describe/class.hpp>

#include "Rex/Entity.h"
#include "Wirekit/IntfId.h"

namespace Interface {

struct DeviceIntfStatus {
   Wirekit::IntfId intfId;
   Rex::String deviceName;
   int32_t ifIndex = 0;  // of the device; one that went away and came back has another
   bool operator==(const DeviceIntfStatus&) const = default;
};
BOOST_DESCRIBE_STRUCT(DeviceIntfStatus, (), (intfId, deviceName, ifIndex))

class DeviceIntfStatusDir : public Rex::Entity {
   REX_ENTITY(DeviceIntfStatusDir, Rex::Entity)
   REX_VALUES(DeviceIntfStatus, intfStatus, Wirekit::IntfId, intfId)
   REX_ENTITY_END()
};

}  // namespace Interface
