#pragma once

namespace vx::os {

/**
 * Hold an open file against other holders, for reading beside other readers
 * or alone for writing: false with EACCES when it is held otherwise. File
 * systems without locks are taken as they are.
 */
bool hold(int file, bool writing) noexcept;

/** Hold an open file alone, after waiting for those who hold it: false with errno. */
bool holdWhenFree(int file) noexcept;

}
