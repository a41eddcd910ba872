// The memory that FreeType works with.
#pragma once

#include <ft2build.h>
#include FT_SYSTEM_H

namespace portable {

// The C allocator with a reserve behind it. FreeType uses some small blocks without a look at
// whether it got them, the context of a TrueType program for one: while memory is short these come
// from the reserve, and large blocks fail. AllocationWatch tells in either case. Safe from any
// thread; lives as long as the process.
FT_Memory fontMemory();

}  // namespace portable
