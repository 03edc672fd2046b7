// SPDX-License-Identifier: MIT
// The compiled resource file as an ELF note: an allocated note is mapped with the module and found through
// its program headers, so no symbol need be exported for it.

    .section .note.zrtools.rsrc, "a", %note
    .p2align 2
    .long 2f - 1f
    .long 4f - 3f
    .long 1
1:  .asciz "zrtools.rsrc"
2:  .p2align 2
3:  .incbin ZR_RES_FILE
4:  .p2align 2

    .section .note.GNU-stack, "", %progbits
