#ifndef TALM_CONFIG_HPP
#define TALM_CONFIG_HPP

/**
 * @file
 * The two managers of talm/config.h as interfaces. Their slots are called in
 * this order by programs that know no C++, so neither has a virtual
 * destructor, and no exception may leave them.
 */

#include "talm/config.h"

struct IConfigMgr {
    /**
     * The text of an option, or with `defaults` its installation default.
     * @param text receives a new block from malloc; the caller frees it
     * @return 0, or non-zero when the option has no value; then `text` is null
     */
    virtual uint32_t GetValue(const char *key, char **text, bool defaults) = 0;

    /**
     * Set the user's value of an option: the manager's status, 0 for done.
     * The library's own manager refuses (1) what an option file cannot hold:
     * an empty key, a key with "=", a leading "#" or blanks around it, a line
     * break in either. When the file cannot be written, the old value stays.
     */
    virtual uint32_t SetValue(const char *key, const char *value) = 0;

    /** Load option file 0, 1, 2 or 3 anew: true when it was loaded, or is missing and may be. */
    virtual bool Load(int32_t file) = 0;

protected:
    ~IConfigMgr() = default;
};

struct IUserFolderMgr {
    /**
     * The text of user folder `number` into `buffer` of `size` bytes: 0, or 1
     * for an unknown number or no room; then the buffer is empty.
     */
    virtual uint32_t GetFolder(int32_t number, char *buffer, int32_t size) = 0;

protected:
    ~IUserFolderMgr() = default;
};

#endif
