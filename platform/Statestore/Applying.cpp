#include "Statestore/Applying.h"

#include "Rex/Assert.h"
#include "Statestore/RowSm.h"

namespace Statestore {

void Applying::write(RowSm& row, const Place& place, const std::function<void()>& write) {
   REX_ASSERT(!Rex::Dispatcher::running());
   Rex::Ptr<RowSm> standing(&row);
   row_ = &row;
   place_ = &place;
   Rex::Dispatcher::run([&] {
      write();
      written_ = valueAt(*row.entity(), place);
   });
   row_ = nullptr;
   place_ = nullptr;
   written_ = {};
}

bool Applying::ended(const RowSm& row, const Rex::Member& member, const Rex::AnyKey& key) const {
   if (row_ != &row || place_->member != &member) return false;
   if (key.has() && member.keyText(key) != place_->key) return false;
   return valueAt(*row.entity(), *place_) == written_;
}

bool Applying::puts(const Rex::Entity& entity) const {
   return row_ && written_.entity.get() == &entity;
}

}  // namespace Statestore
