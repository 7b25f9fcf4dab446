#pragma once

namespace vx::heap {

/** Every chunk back to the general allocator, and the manager as before its start. */
void resetStorageManager();

}
