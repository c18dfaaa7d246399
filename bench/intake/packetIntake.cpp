// Measures ways of taking frames from many ports, in a network namespace of its own, with the
// kernel's calls alone. Stands by itself:
//
//   c++ -O2 -std=c++20 bench/intake/packetIntake.cpp -o packetIntake && sudo ./packetIntake
//
//   ports   a packet socket for each port, opened with all protocols, then bound
//   quick   a packet socket for each port, opened with none, then bound
//   ring    one socket for all ports, mapped receive ring of fixed slots
//   batch   one socket for all ports, up to 64 frames in a call
//
// Prints the time to open and to close 500 ports, what is lost of a burst of 10000 frames that
// nobody reads while it arrives, and what each frame of it then costs to take. What came of it
// stands in docs/decisions/packet-intake.md.
#include <arpa/inet.h>
#include <linux/filter.h>
#include <linux/if_ether.h>
#include <linux/if_packet.h>
#include <net/if.h>
#include <sched.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace {

constexpr int ports = 500;
constexpr int burst = 10000;
constexpr size_t frameSize = 1514;
constexpr unsigned slotSize = 2048;
constexpr unsigned slots = 16384;

sock_filter code[] = {
    {0x20, 0, 0, 2},      {0x15, 0, 8, 0xC200000E}, {0x28, 0, 0, 0},      {0x15, 0, 6, 0x180},
    {0x28, 0, 0, 12},     {0x15, 3, 0, 0x88CC},     {0x15, 0, 3, 0x8100}, {0x28, 0, 0, 16},
    {0x15, 0, 1, 0x88CC}, {6, 0, 0, 0xFFFF},        {6, 0, 0, 0}};

double now() {
   return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch())
       .count();
}
void need(bool ok, const char* what) {
   if (ok) return;
   perror(what);
   exit(1);
}
template <class T>
void option(int fd, int level, int name, const T& value) {
   need(setsockopt(fd, level, name, &value, sizeof value) == 0, "setsockopt");
}
std::string portName(int i) {
   return "p" + std::to_string(i);
}

void makeDevices() {
   need(unshare(CLONE_NEWNET) == 0, "unshare");
   FILE* batch = popen("ip -batch -", "w");
   for (int i = 0; i < ports; ++i) {
      fprintf(batch, "link add p%d type veth peer name q%d\nlink set p%d up\nlink set q%d up\n", i,
              i, i, i);
   }
   need(pclose(batch) == 0, "ip");
}

void attach(int fd) {
   sock_fprog program{11, code};
   option(fd, SOL_SOCKET, SO_ATTACH_FILTER, program);
   option(fd, SOL_PACKET, PACKET_AUXDATA, 1);
   option(fd, SOL_PACKET, PACKET_IGNORE_OUTGOING, 1);
   option(fd, SOL_SOCKET, SO_RCVBUFFORCE, 32 << 20);  // doubled by the kernel
}
void join(int fd, int ifindex) {
   packet_mreq member{ifindex, PACKET_MR_MULTICAST, 6, {1, 0x80, 0xC2, 0, 0, 0x0E}};
   option(fd, SOL_PACKET, PACKET_ADD_MEMBERSHIP, member);
}
void bindTo(int fd, int ifindex) {
   sockaddr_ll address{};
   address.sll_family = AF_PACKET;
   address.sll_protocol = htons(ETH_P_ALL);
   address.sll_ifindex = ifindex;
   need(bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0, "bind");
}

void sendBurst() {
   int fd = socket(AF_PACKET, SOCK_RAW, 0);
   bindTo(fd, static_cast<int>(if_nametoindex("q0")));
   option(fd, SOL_SOCKET, SO_SNDBUFFORCE, 64 << 20);
   unsigned char frame[frameSize] = {1, 0x80, 0xC2, 0, 0, 0x0E, 2, 0, 0, 0, 0, 1, 0x88, 0xCC};
   for (int i = 0; i < burst; ++i) need(send(fd, frame, sizeof frame, 0) > 0, "send");
   close(fd);
   usleep(100000);
}
void report(const char* way, int taken, double time) {
   printf("%-6s burst of %d unread: %d taken, %.2f us each\n", way, burst, taken,
          taken ? time / taken * 1e6 : 0);
}

void perPort(bool quick) {
   const char* way = quick ? "quick" : "ports";
   std::vector<int> fds;
   double start = now();
   for (int i = 0; i < ports; ++i) {
      int ifindex = static_cast<int>(if_nametoindex(portName(i).c_str()));
      int fd = socket(AF_PACKET, SOCK_RAW | SOCK_NONBLOCK, quick ? 0 : htons(ETH_P_ALL));
      need(fd >= 0, "socket");
      attach(fd);
      bindTo(fd, ifindex);
      join(fd, ifindex);
      fds.push_back(fd);
   }
   printf("%-6s open %d ports: %.3f s\n", way, ports, now() - start);
   sendBurst();
   start = now();
   int taken = 0;
   static char data[10236];
   alignas(cmsghdr) char control[256];
   for (;; ++taken) {
      iovec part{data, sizeof data};
      msghdr message{};
      message.msg_iov = &part;
      message.msg_iovlen = 1;
      message.msg_control = control;
      message.msg_controllen = sizeof control;
      if (recvmsg(fds[0], &message, 0) < 0) break;
   }
   report(way, taken, now() - start);
   start = now();
   for (int fd : fds) close(fd);
   printf("%-6s close %d ports: %.3f s\n", way, ports, now() - start);
}

int sharedSocket() {
   int fd = socket(AF_PACKET, SOCK_RAW | SOCK_NONBLOCK, 0);
   need(fd >= 0, "socket");
   attach(fd);
   return fd;
}
void joinAll(int fd) {
   for (int i = 0; i < ports; ++i) join(fd, static_cast<int>(if_nametoindex(portName(i).c_str())));
}

void ring() {
   double start = now();
   int fd = sharedSocket();
   option(fd, SOL_PACKET, PACKET_VERSION, static_cast<int>(TPACKET_V2));
   tpacket_req layout{1 << 16, slots * slotSize >> 16, slotSize, slots};
   option(fd, SOL_PACKET, PACKET_RX_RING, layout);
   size_t size = size_t{slots} * slotSize;
   auto* memory =
       static_cast<char*>(mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0));
   need(memory != MAP_FAILED, "mmap");
   bindTo(fd, 0);
   joinAll(fd);
   printf("ring   open %d ports: %.3f s\n", ports, now() - start);
   sendBurst();
   start = now();
   int taken = 0;
   static char data[slotSize];
   for (;; ++taken) {
      auto* header = reinterpret_cast<tpacket2_hdr*>(memory + size_t(taken % slots) * slotSize);
      if (!(__atomic_load_n(&header->tp_status, __ATOMIC_ACQUIRE) & TP_STATUS_USER)) break;
      memcpy(data, reinterpret_cast<char*>(header) + header->tp_mac, header->tp_snaplen);
      __atomic_store_n(&header->tp_status, 0u, __ATOMIC_RELEASE);
   }
   report("ring", taken, now() - start);
   start = now();
   munmap(memory, size);
   close(fd);
   printf("ring   close %d ports: %.3f s\n", ports, now() - start);
}

void batch() {
   double start = now();
   int fd = sharedSocket();
   bindTo(fd, 0);
   joinAll(fd);
   printf("batch  open %d ports: %.3f s\n", ports, now() - start);
   sendBurst();
   start = now();
   constexpr unsigned many = 64;
   static char data[many][2048];
   alignas(cmsghdr) static char control[many][64];
   static sockaddr_ll from[many];
   mmsghdr messages[many];
   iovec parts[many];
   int taken = 0;
   for (;;) {
      for (unsigned i = 0; i < many; ++i) {
         parts[i] = {data[i], sizeof data[i]};
         messages[i] = {{&from[i], sizeof from[i], &parts[i], 1, control[i], sizeof control[i], 0},
                        0};
      }
      int got = recvmmsg(fd, messages, many, 0, nullptr);
      if (got <= 0) break;
      taken += got;
   }
   report("batch", taken, now() - start);
   start = now();
   close(fd);
   printf("batch  close %d ports: %.3f s\n", ports, now() - start);
}

}  // namespace

int main() {
   makeDevices();
   perPort(false);
   perPort(true);
   ring();
   batch();
}
