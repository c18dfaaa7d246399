#include "Interface/SegmentPam.h"

#include <algorithm>
#include <cstring>

#include "Wirekit/EthHdr.h"

namespace Interface {
namespace {

constexpr size_t tagOffset = 2 * Wirekit::EthAddr::size;

uint16_t numberAt(std::span<const uint8_t> octets, size_t offset) {
   return static_cast<uint16_t>(octets[offset] << 8 | octets[offset + 1]);
}

// Takes the 802.1Q tag out of the frame, if there is one.
std::optional<Wirekit::VlanTag> takeTag(std::vector<uint8_t>& frame) {
   if (frame.size() < sizeof(Wirekit::EthHdr) + Wirekit::VlanTag::wireSize) return std::nullopt;
   Wirekit::VlanTag tag{numberAt(frame, tagOffset), numberAt(frame, tagOffset + 2)};
   if (tag.tpid != Wirekit::dot1QTpid) return std::nullopt;
   auto at = frame.begin() + tagOffset;
   frame.erase(at, at + Wirekit::VlanTag::wireSize);
   return tag;
}

}  // namespace

SegmentPam::SegmentPam(const Wirekit::IntfId& intfId, const PamConfig& config, bool untags,
                       Segment::Ptr segment)
    : Pam(intfId), config_(config), untags_(untags) {
   segmentIs(std::move(segment));
}

SegmentPam::~SegmentPam() {
   segmentIs(nullptr);
}

void SegmentPam::segmentIs(Segment::Ptr segment) {
   if (segment_ == segment) return;
   if (segment_) segment_->leave(*this);
   segment_ = std::move(segment);
   if (segment_) segment_->ports_.push_back(this);
}

void SegmentPam::arrive(std::span<const uint8_t> octets) {
   if (octets.size() < sizeof(Wirekit::EthHdr)) return;
   std::vector<uint8_t> frame(octets.begin(), octets.end());
   std::optional<Wirekit::VlanTag> tag;
   if (untags_ && config_.separateDot1QHdr) tag = takeTag(frame);
   if (config_.ethProtocol != PamConfig::allProtocols &&
       config_.ethProtocol != numberAt(frame, tagOffset)) {
      return;
   }
   size_t accepted = std::min<size_t>(Wirekit::sockFilterRun(config_.filter, frame), frame.size());
   if (accepted == 0 || accepted > config_.maxRxPktData) return;
   rxFrameIs(std::span(frame).first(accepted), tag);
}

void SegmentPam::doTransmit(Wirekit::Pkt& pkt) {
   if (segment_) segment_->send(pkt.data(), this);
}

void SegmentPamMaker::plug(const Rex::String& deviceName, Segment::Ptr segment) {
   Device& device = devices_[deviceName];
   device.segment = segment;
   if (device.pam && !device.pam->closed()) device.pam->segmentIs(segment);
}

PamMaker::Made SegmentPamMaker::make(const DeviceIntfStatus& status, const PamConfig& config) {
   auto found = devices_.find(status.deviceName);
   if (found == devices_.end()) return {nullptr, "no such device"};
   Device& device = found->second;
   device.pam = Rex::make<SegmentPam>(status.intfId, config, untags, device.segment);
   return {device.pam, Rex::String()};
}

}  // namespace Interface
