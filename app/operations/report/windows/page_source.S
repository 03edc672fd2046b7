// SPDX-License-Identifier: MIT
    .section .rdata, "dr"
    .global zr_report_page
zr_report_page:
    .incbin ZR_REPORT_PAGE
    .global zr_report_page_end
zr_report_page_end:
    .byte 0
