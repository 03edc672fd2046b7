// SPDX-License-Identifier: MIT
    .section .rodata
    .global zr_report_page
    .hidden zr_report_page
zr_report_page:
    .incbin ZR_REPORT_PAGE
    .global zr_report_page_end
    .hidden zr_report_page_end
zr_report_page_end:
    .byte 0
    .section .note.GNU-stack, "", %progbits
