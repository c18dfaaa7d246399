// The kernel's own view of one network namespace.
#pragma once

#include "Rex/Entity.h"
#include "Rex/String.h"

namespace KernelNetInfo {

struct Device {
   Rex::String name;
   int32_t ifIndex = 0;
   bool operator==(const Device&) const = default;
};
BOOST_DESCRIBE_STRUCT(Device, (), (name, ifIndex))

struct Status : Rex::Entity {
   REX_ENTITY(Status, Rex::Entity)
   REX_VALUES(Device, device, Rex::String, name)
   REX_ENTITY_END()
};

}  // namespace KernelNetInfo
