#include "host/SharedStore.h"

#include <fmt/format.h>

#include <random>

#include "Rex/Timer.h"
#include "Statestore/Cell.h"
#include "host/KnownPaths.h"
#include "host/StartError.h"

namespace Host {
namespace {

Redis::StoreUrl resolved(const Redis::StoreUrl& url) {
   try {
      return url.resolved();
   } catch (const Redis::StoreUrlError& error) {
      throw StartError(std::string("--store: ") + error.what());
   }
}

// No other process has it, nor this one when it ran before.
std::string writerName() {
   std::random_device random;
   return fmt::format("{:08x}{:08x}", random(), random());
}

}  // namespace

SharedStore::SharedStore(Rex::Loop& loop, Rex::Context& context, const Redis::StoreUrl& url)
    : loop_(loop),
      context_(context),
      text_(url.text()),
      store_(loop, resolved(url), std::random_device()()),
      replica_(store_, writerName()) {
   for (int cell : {1, 2}) replica_.yieldAt(Cell::path("redundancy/status", cell).stdString());
}

bool SharedStore::load(Statestore::EntityManager& manager) {
   std::vector<std::string> paths;
   for (const KnownPath& known : knownPaths()) {
      manager.entityIs(known.path, known.type);
      paths.push_back(known.path);
   }
   replica_.loaded(paths, [this](bool ofTheirTypes) {
      loaded_ = ofTheirTypes;
      loop_.stop();
   });
   if (!loaded_) loop_.run(context_);
   if (loaded_ == false) {
      throw StartError("the state store at " + text_ +
                       " has something else where agents have their state; the log tells where");
   }
   return loaded_.has_value();
}

bool SharedStore::flush() {
   constexpr double longest = 2, step = 0.01;  // seconds; between two looks
   Rex::Timer look(context_.clock());
   double end = context_.clock()->now() + longest;
   look.handlerIs(nullptr, [&] {
      if (replica_.idle() || context_.clock()->now() >= end) return loop_.stop();
      look.timeMinIs(context_.clock()->now() + step);
   });
   look.timeMinIs(0);
   loop_.run(context_);
   return replica_.idle();
}

Rex::Json SharedStore::describe() const {
   return {{"url", text_}, {"connected", store_.up()}, {"refused", replica_.refused()}};
}

}  // namespace Host
