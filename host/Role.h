// The part of a supervisor beside another one.
#pragma once

namespace Host {

enum class Role { active, standby };

}  // namespace Host
