scan_ir_tapbus  8
    TDI (01)
 RUNTEST 100 TCK;
scan_dr_tapbus  8
    TDI (02)

RUNTEST 100 TCK;
set_property hir_length {0} $current_tapbus
!==* Header/Trailer info combined with SIR/SDR
!

# TRST ON ;
