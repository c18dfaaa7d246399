// The descriptions of this module's entity types.
#include "Interface/DeviceIntfStatusDir.h"
#include "Interface/EthDevPamCollection.h"
#include "Interface/EthLagIntfStatus.h"
#include "Interface/EthPhyIntfConfig.h"
#include "Interface/EthPhyIntfStatus.h"
#include "Interface/IntfStatus.h"
#include "Interface/PamDesiredIntfDir.h"
#include "Rex/Register.h"

REX_REGISTER(Interface::EthPhyIntfStatus)
REX_REGISTER(Interface::AllEthPhyIntfStatusDir)
REX_REGISTER(Interface::EthPhyIntfConfig)
REX_REGISTER(Interface::AllEthPhyIntfConfigDir)
REX_REGISTER(Interface::EthIntfStatus)
REX_REGISTER(Interface::EthLagIntfStatus)
REX_REGISTER(Interface::EthLagIntfStatusDir)
REX_REGISTER(Interface::IntfStatus)
REX_REGISTER(Interface::AllIntfStatusDir)
REX_REGISTER(Interface::AllIntfStatusLocalDir)
REX_REGISTER(Interface::DeviceIntfStatusDir)
REX_REGISTER(Interface::PamDesiredIntfDir)
REX_REGISTER(Interface::EthDevPamCollection)
