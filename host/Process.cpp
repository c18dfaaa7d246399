#include "host/Process.h"

#include <signal.h>
#include <sys/epoll.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string>
#include <utility>

#include "Rex/System.h"
#include "Statestore/Cell.h"
#include "host/StartError.h"

namespace Host {
namespace {

sigset_t stopSignals() {
   sigset_t set;
   sigemptyset(&set);
   sigaddset(&set, SIGTERM);
   sigaddset(&set, SIGINT);
   return set;
}

}  // namespace

Process::Process(Rex::Loop& loop) : loop_(loop), startTime_(Rex::System::currentTime()) {
   sigset_t set = stopSignals();
   sigprocmask(SIG_BLOCK, &set, nullptr);
   // Whoever reads our standard error may go away before us.
   signal(SIGPIPE, SIG_IGN);
   signals_ = signalfd(-1, &set, SFD_CLOEXEC | SFD_NONBLOCK);
   if (signals_ < 0) throw StartError(std::string("signalfd: ") + std::strerror(errno));
   loop_.descriptorIs(signals_, EPOLLIN, [this](uint32_t) { loop_.stop(); });
}

Process::~Process() {
   forgetSignals();
}

void Process::forgetSignals() {
   if (signals_ < 0) return;
   loop_.descriptorDel(signals_);
   close(std::exchange(signals_, -1));
}

Rex::Json Process::describe() const {
   return {{"pid", getpid()},
           {"cell", Cell::cellId()},
           {"time", Rex::System::currentTime()},
           {"startTime", startTime_},
           {"wakeups", loop_.wakeups()}};
}

}  // namespace Host
