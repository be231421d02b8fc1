// Host exceptions that unwind through the plug-in.
#pragma once

// Initialises the statically linked unwinder. It initialises itself only when unwinding starts in the
// plug-in, but a host exception starts in the host's unwinder, which then calls into this one.
void readyUnwinder();
