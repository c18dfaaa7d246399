// Devices of Linux in namespaces of a test's own. Needs the right to make them.
#pragma once

#include <gtest/gtest.h>
#include <net/if.h>
#include <sched.h>

#include <cstdlib>
#include <functional>
#include <string>
#include <thread>

namespace LldpTest {

inline void ip(const std::string& arguments) {
   ASSERT_EQ(std::system(("ip " + arguments).c_str()), 0) << arguments;
}
inline int indexOf(const char* device) {
   return static_cast<int>(if_nametoindex(device));
}

// Two devices joined by a wire.
inline void makePair(const std::string& a, const std::string& b) {
   ip("link add name " + a + " type veth peer name " + b);
   ip("link set dev " + a + " up");
   ip("link set dev " + b + " up");
}

// A thread can leave the process's namespaces alone, and what it opens stays in its own.
inline void inNamespace(const std::function<void()>& body) {
   std::thread([&] {
      ASSERT_EQ(unshare(CLONE_NEWNET | CLONE_NEWUTS), 0) << "run as root";
      body();
   }).join();
}

}  // namespace LldpTest
