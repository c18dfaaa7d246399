#include "Foreign/EntityMib.h"

#include "Rex/Register.h"

REX_REGISTER(EntityMib::Status)
REX_REGISTER(EntityMib::SysDescr)

namespace EntityMib {

SysDescrSm::SysDescrSm(const Rex::Ptr<Status const>& status, const Rex::Ptr<SysDescr>& sysDescr)
    : status_(status), sysDescr_(sysDescr) {
   on(status_, Status::descriptionAttr, &SysDescrSm::handleDescription);
   handleDescription();
}

void SysDescrSm::handleDescription() {
   if (status_) sysDescr_->descriptionIs(status_->description());
}

}  // namespace EntityMib
