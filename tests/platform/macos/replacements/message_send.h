#pragma once

// How many messages macOS's two functions have carried. The second one is for results that the processor's
// calling convention puts into memory of the caller.
extern "C" {
extern int karno_messages_sent;
extern int karno_messages_sent_stret;
}
