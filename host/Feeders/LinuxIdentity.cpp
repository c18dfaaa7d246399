#include <linux/ethtool.h>
#include <linux/sockios.h>
#include <net/if.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <fstream>

#include "host/Feeders/LinuxNetwork.h"

namespace Host {
namespace {

Wirekit::EthAddr permanentAddress(const std::string& device) {
   constexpr size_t room = 32;  // octets, as many as any kind of device has
   alignas(ethtool_perm_addr) uint8_t memory[sizeof(ethtool_perm_addr) + room]{};
   auto* asked = reinterpret_cast<ethtool_perm_addr*>(memory);
   asked->cmd = ETHTOOL_GPERMADDR;
   asked->size = room;
   ifreq request{};
   if (device.size() >= sizeof(request.ifr_name)) return {};
   std::memcpy(request.ifr_name, device.data(), device.size());
   request.ifr_data = reinterpret_cast<char*>(memory);
   int fd = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
   if (fd < 0) return {};
   bool told = ioctl(fd, SIOCETHTOOL, &request) == 0 && asked->size == Wirekit::EthAddr::size;
   close(fd);
   return told ? Wirekit::EthAddr::fromOctets(asked->data) : Wirekit::EthAddr();
}

// The bus's name of the hardware, and which of its ports the device is.
std::string busPlace(const std::string& device) {
   std::filesystem::path folder = std::filesystem::path("/sys/class/net") / device;
   std::error_code error;
   auto hardware = std::filesystem::read_symlink(folder / "device", error);
   if (error) return {};
   std::string port = "0";
   std::ifstream(folder / "dev_port") >> port;
   return hardware.filename().string() + "/" + port;
}

}  // namespace

std::string deviceIdentity(const Link& link) {
   if (link.kind.empty()) {
      Wirekit::EthAddr address = permanentAddress(link.name);
      if (!address.isZero()) return "mac:" + address.stringValue().stdString();
      if (std::string place = busPlace(link.name); !place.empty()) return "bus:" + place;
   }
   return "name:" + link.name;
}

}  // namespace Host
