#pragma once

// The polling protocol of escapable loops, and what the fatal-signal handler
// runs. The calls that maintain both are vx/escape.h.

namespace vx::session {

/**
 * Count one work step of a long computation: true when it is to stop now,
 * without a message. The caller brackets the computation with the VxEscStart
 * and VxEscEnd hooks.
 *
 * The step that takes VgEscNumChk past VgEscMaxChk asks the VxEscCheck hook;
 * its yes always stops. Otherwise VgEscapeFlag stops, unless VgEscapeDisable.
 */
bool interrupted();

/**
 * Run the signal call-backs in slot order. Takes no lock and allocates
 * nothing, so it may run in a signal handler.
 */
void runSignalCalls() noexcept;

}
