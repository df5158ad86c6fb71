#pragma once

// How macOS declares the functions that carry messages: whoever calls one casts it to the method's type.
extern "C" {
void objc_msgSend();
void objc_msgSend_stret();
}
