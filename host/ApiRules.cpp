#include "host/ApiRules.h"

#include "Foreign/Ip.h"
#include "Foreign/Ip6.h"
#include "Interface/IntfStatus.h"
#include "Rex/Dir.h"
#include "host/ApiMessage.h"
#include "host/ApiTarget.h"
#include "model/CliConfig.h"

namespace Host {

using Statestore::Steps;

namespace {

template <class T>
bool isOf(const Rex::EntityType& type) {
   return &type == &T::staticType();
}

// A row with nothing but what the body says.
template <class T>
Rex::Ptr<T> wishOf(const std::string& intf, const Rex::Json& body) {
   auto wish = Rex::make<T>(Wirekit::IntfId(intf));
   Rex::decodeEntity(T::staticType(), body, {})(*wish);
   return wish;
}

}  // namespace

void ApiRules::check(const Steps& steps, const Rex::EntityType& type, const Rex::Json& body) {
   const std::string& intf = steps.back();
   if (isOf<Lldp::ExternalTlvPortConfig>(type)) {
      requireOwnTlvs(steps, body);
   } else if (isOf<Ip::IpIntfStatus>(type)) {
      auto wish = wishOf<Ip::IpIntfStatus>(intf, body);
      if (wish->activeAddrWithMask() != Wirekit::IpAddrWithMask()) {
         requireNumber(intf, "activeAddrWithMask");
      }
      if (wish->secondaryWithMasks()) requireNumber(intf, "secondaryWithMask");
   } else if (isOf<Ip6::IntfStatus>(type)) {
      if (wishOf<Ip6::IntfStatus>(intf, body)->addrs()) requireNumber(intf, "addr");
   }
}

// The path is .../externalTlvs/<provider>/externalTlvPortConfig/<port>. Two providers that ask for
// one TLV on a port would end the agent, and of two with one key the last writer would win.
void ApiRules::requireOwnTlvs(const Steps& steps, const Rex::Json& body) {
   const std::string& provider = steps[steps.size() - 3];
   const std::string& port = steps.back();
   auto wish = wishOf<Lldp::ExternalTlvPortConfig>(port, body);
   auto dir = Rex::dynamicPtr<Rex::Dir>(entityManager_.find(above(steps, 3)).entity);
   if (!dir) return;
   for (auto [key, tlv] : wish->tlv()) {
      auto claim = std::pair(port, Rex::valueToString(key).stdString());
      std::string other = providers_.try_emplace(claim, provider).first->second;
      for (auto [name, entity] : dir->entityPtr()) {
         auto standing = Rex::dynamicPtr<Lldp::ExternalTlvConfig>(entity);
         auto row = standing ? standing->externalTlvPortConfig(wish->intfId()) : nullptr;
         if (!row || !row->tlvHas(key) || name.view() == provider) continue;
         Steps itsRow = above(steps, 3);
         itsRow.insert(itsRow.end(), {name.stdString(), steps[steps.size() - 2], port});
         if (!isGone(itsRow)) other = name.stdString();
      }
      if (other == provider) continue;
      throw ApiError(409,
                     "tlv: provider " + inQuotes(other) +
                         " has a TLV of that organisation, "
                         "subtype and index on " +
                         port + "; choose another one",
                     "tlv");
   }
}

bool ApiRules::isGone(const Steps& steps) const {
   for (size_t last = 0; last < steps.size(); ++last) {
      if (gone_.contains(above(steps, last))) return true;
   }
   return false;
}

// An address is told with its interface's number, and the agent ends when there is none.
void ApiRules::requireNumber(const std::string& intf, const std::string& attribute) const {
   auto dir = Rex::dynamicPtr<Interface::AllIntfStatusDir>(
       entityManager_.getEntity("interface/status/all"));
   auto status = dir ? dir->intfStatus(Wirekit::IntfId(intf)) : nullptr;
   if (status && status->ifIndex() > 0) return;
   throw ApiError(409,
                  attribute + ": the interface " + inQuotes(intf) +
                      " has no number; it has to stand in interface/status/all with an ifIndex "
                      "before it has addresses",
                  attribute);
}

}  // namespace Host
