#pragma once

/// Makes Ctrl-C ask long work to end at the next document instead of ending the program in the middle of one.
void watchForInterrupt();

/// Whether Ctrl-C was pressed.
bool isInterrupted() noexcept;

/// @throws Failure with status Interrupted once Ctrl-C was pressed
void throwIfInterrupted();
