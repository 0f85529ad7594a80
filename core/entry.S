// SPDX-License-Identifier: Apache-2.0
// The entry table and the exported stubs.
//
// For every exported X there is one 16-byte slot X_arraddr with the address of this processor variant's implementation,
// in the order of the sorted names, read-only once the loader has relocated it; the stub X jumps through its slot and
// leaves every argument where it is. entries.inc is the generated list of names, one ENTRY line each.

#define PASTE2(a, b) a##b
#define PASTE(a, b) PASTE2(a, b)
#define STRING2(a) #a
#define STRING(a) STRING2(a)

        .section .data.rel.ro, "aw", @progbits
        .macro ENTRY name
        .hidden ZETI_VARIANT\()_\name
        .balign 16
        .type \name\()_arraddr, @object
        .size \name\()_arraddr, 16
\name\()_arraddr:
#if defined(__x86_64__)
        .quad ZETI_VARIANT\()_\name
        .zero 8
#else
        .long ZETI_VARIANT\()_\name
        .zero 12
#endif
        .endm
        .include "entries.inc"
        .purgem ENTRY

        .text
        .macro ENTRY name
        .globl \name
        .type \name, @function
        .balign 16
\name:
#if defined(__x86_64__)
        jmp *\name\()_arraddr(%rip)
#else
        // ecx carries no argument and need not be kept across a call.
        call .Lown_address
1:      jmp *(\name\()_arraddr - 1b)(%ecx)
#endif
        .size \name, . - \name
        .endm
        .include "entries.inc"

#if !defined(__x86_64__)
.Lown_address:
        movl (%esp), %ecx
        ret
#endif

        .section .note.GNU-stack, "", @progbits
