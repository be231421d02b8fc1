// Exceptions of the host that unwind through the plug-in.
#pragma once

// Readies the unwinder that is linked in: it does so itself only when something is unwound from here, but a
// host's exception is unwound by the host's own, which then calls into ours.
void readyUnwinder();
