#include "Rex/Context.h"

#include "Rex/Assert.h"
#include "Rex/Trace.h"

namespace Rex {
namespace {
Context* present = nullptr;
}  // namespace

Context::Context(Ptr<Clock> clock) : clock_(std::move(clock)) {}

Context::~Context() {
   REX_ASSERT(present != this);
}

Context& Context::current() {
   REX_ASSERT(present);
   return *present;
}

void Context::traceMaskIs(const std::string& facility, uint16_t levels) {
   size_t index = traceFacility(facility);
   masks_[index] = levels;
   if (present == this) traceMasks[index] = levels;
}

ContextScope::ContextScope(Context& context) : before_(present) {
   if (present == &context) return;
   present = &context;
   traceMasks = context.masks_;
}

ContextScope::~ContextScope() {
   if (present == before_) return;
   present = before_;
   traceMasks = before_ ? before_->masks_ : TraceMasks{};
}

}  // namespace Rex
