#include "message_send.h"

#include <utility>

using karno::platform::objc::Id;

namespace {

Id (*preprocessor)(Id) = nullptr;

}  // namespace

extern "C" Id (*objc_setExceptionPreprocessor(Id (*next)(Id)))(Id) {
  return std::exchange(preprocessor, next);
}

Id (*installedPreprocessor())(Id) { return preprocessor; }

// A message is carried by a function that finds the method and jumps to it with every argument where the
// caller has put it, which only machine code can do. macOS's runtime has two of them; these find the method
// by this system's runtime.
int karno_messages_sent = 0;
int karno_messages_sent_stret = 0;

__asm__(R"(
.macro karno_carry_message name, count, receiver, selector
  .globl \name
  .type \name, @function
\name:
  .cfi_startproc
  pushq %rbp
  .cfi_def_cfa_offset 16
  .cfi_offset %rbp, -16
  movq %rsp, %rbp
  .cfi_def_cfa_register %rbp
  subq $192, %rsp
  movq %rdi, -8(%rbp)
  movq %rsi, -16(%rbp)
  movq %rdx, -24(%rbp)
  movq %rcx, -32(%rbp)
  movq %r8, -40(%rbp)
  movq %r9, -48(%rbp)
  movq %rax, -56(%rbp)
  movups %xmm0, -80(%rbp)
  movups %xmm1, -96(%rbp)
  movups %xmm2, -112(%rbp)
  movups %xmm3, -128(%rbp)
  movups %xmm4, -144(%rbp)
  movups %xmm5, -160(%rbp)
  movups %xmm6, -176(%rbp)
  movups %xmm7, -192(%rbp)
  lock incl \count(%rip)
  movq \receiver(%rbp), %rdi
  movq \selector(%rbp), %rsi
  call objc_msg_lookup@PLT
  movq %rax, %r11
  movups -80(%rbp), %xmm0
  movups -96(%rbp), %xmm1
  movups -112(%rbp), %xmm2
  movups -128(%rbp), %xmm3
  movups -144(%rbp), %xmm4
  movups -160(%rbp), %xmm5
  movups -176(%rbp), %xmm6
  movups -192(%rbp), %xmm7
  movq -8(%rbp), %rdi
  movq -16(%rbp), %rsi
  movq -24(%rbp), %rdx
  movq -32(%rbp), %rcx
  movq -40(%rbp), %r8
  movq -48(%rbp), %r9
  movq -56(%rbp), %rax
  leave
  .cfi_def_cfa %rsp, 8
  jmp *%r11
  .cfi_endproc
  .size \name, . - \name
.endm

  .text
  karno_carry_message objc_msgSend, karno_messages_sent, -8, -16
  karno_carry_message objc_msgSend_stret, karno_messages_sent_stret, -16, -24
)");
