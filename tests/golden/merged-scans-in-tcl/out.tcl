set_property hir_length {4} $current_tapbus

set_property hir_TDI {F} $current_tapbus!==* Header/Trailer info combined with SIR/SDR
!

set_property hdr_length {5} $current_tapbus

set_property hdr_TDI {15} $current_tapbus
set_property hdr_TDO {12} $current_tapbus
set_property hdr_TDO_mask {13} $current_tapbus!==* Header/Trailer info combined with SIR/SDR
!

set_property tir_length {0} $current_tapbus
!==* Header/Trailer info combined with SIR/SDR
!

scan_ir_tapbus  12
    TDI (0af)
 scan_dr_tapbus  13
    TDI (14b7)
  SMASK (079d)
    TDO (1ffe)
   MASK (01f3)

scan_dr_tapbus  13
    TDI (0b57)
  SMASK (079d)

