#include "Wirekit/Pam.h"

#include <algorithm>

#include "Rex/System.h"

namespace Wirekit {
namespace {
// A port that is not complete yet has nobody who takes its frames. It is asked again after a
// while, each time after twice as long, so that the frames neither wait for ever nor keep the loop
// busy.
constexpr double firstPatience = 1;
constexpr double mostPatience = 64;
}  // namespace

Pam::Pam(const IntfId& intfId)
    : intfId_(intfId), packets_(globalPktManager()), turn_(Rex::Context::current().clock()) {
   turn_.handlerIs(nullptr, [this] { handleTurn(); });
}

Pam::~Pam() = default;

Pkt::Ptr Pam::rxPkt() {
   Pkt::Ptr pkt = queue_.pop();
   patience_ = 0;
   if (!queue_.empty()) {
      turn_.timeMinIs(0);
      return pkt;
   }
   turn_.cancel();
   if (std::exchange(dropping_, false)) handleRoom();
   return pkt;
}

void Pam::txPktIs(const Pkt::Ptr& pkt) {
   if (pkt && !closed_) doTransmit(*pkt);
}

bool Pam::rxFrameIs(std::span<const uint8_t> frame, const std::optional<VlanTag>& separateTag) {
   if (closed_) return false;
   Pkt::Ptr pkt;
   if (queue_.memory() <= packets_.memoryLeft()) pkt = packets_.newPkt(frame);
   if (!pkt) {
      dropping_ = true;
      rxDropsInc(1);
      return false;
   }
   if (herald_) herald_(frame);
   if (separateTag) pkt->separateVlanTagIs(*separateTag);
   queue_.push(std::move(pkt));
   // A turn that was asked for keeps its place among those of the other ports.
   if (!turn_.armed() || turn_.timeMin() > 0) turn_.timeMinIs(0);
   return true;
}

void Pam::handleTurn() {
   patience_ = patience_ == 0 ? firstPatience : std::min(2 * patience_, mostPatience);
   turn_.timeMinIs(Rex::System::currentTime() + patience_);
   readableCountInc(1);  // a watcher takes its frame after this, and sets the turn anew
}

void Pam::close() {
   if (closed_) return;
   closed_ = true;
   turn_.cancel();
   queue_.clear();
   doClose();
}

}  // namespace Wirekit
