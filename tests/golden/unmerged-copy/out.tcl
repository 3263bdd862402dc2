set_property hir_length {4} $current_tapbus

set_property hir_TDI {F} $current_tapbus

set_property hdr_length {5} $current_tapbus

set_property hdr_TDI {15} $current_tapbus
set_property hdr_TDO {12} $current_tapbus
set_property hdr_TDO_mask {13} $current_tapbus

set_property tir_length {0} $current_tapbus


scan_ir_tapbus  8 -tdi 0A
 scan_dr_tapbus  8 -tdi 24 -tdo 0F -mask 0F

scan_dr_tapbus  8 -tdi 18

