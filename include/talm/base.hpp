#ifndef TALM_BASE_HPP
#define TALM_BASE_HPP

/**
 * @file
 * The registry of talm/base.h as its owner sees it: the application fills it
 * before it starts the toolkit.
 */

#include "talm/base.h"

namespace HESKET::Talm::Ap {

/** Numbered variables (as addresses) and functions of the host; what was never set is absent (null). */
class TALM_BASE_API Base {
public:
    /** The process's one registry. */
    static Base &Instance();

    void *Function(int32_t number) const;
    void *Variable(int32_t number) const;

    /** Null takes the entry back. Numbers from 0 to 1023; others are ignored. */
    void SetFunction(int32_t number, void *function);
    void SetVariable(int32_t number, void *address);

private:
    Base() = default;
};

}

#endif
